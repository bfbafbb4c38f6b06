// Decodes a value of a phone's file: quoted-printable first, then its character set.
#include <QelUtility/QelUtility.h>
#include <stdio.h>
#include <string.h>

static int show(const char* charset, const char* encoded) {
    char bytes[100];
    size_t length = 0;
    int code = decodeQP(encoded, strlen(encoded), bytes, sizeof bytes, &length);
    VStr text(bytes);
    if (code == 0) {
        CBxCharConvSvcs converter;  // one for each thread; keep it for many texts
        code = converter.InitializeFrom(charset);
        if (code == 0) code = converter.BxConvChar(text);
    }
    printf("%s: %s (code %d)\n", charset, (const char*)text, code);
    return code;
}

int main() {
    show("8859-1", "Caf=E9 de la Paix");
    show("936", "=D6=D0=CE=C4");  // simplified Chinese, GB2312 with its extensions
    show("950", "=A4=A4=A4=E5");  // traditional Chinese, Big5
    show("KOI9", "=41");          // no such set

    // And back: UTF-8 into a set, then quoted-printable after a property's name.
    VStr text("Caf\xC3\xA9; 100 % = all");
    CBxCharConvSvcs converter;
    converter.InitializeTo("8859-1");
    converter.BxConvChar(text);
    char line[100];
    const char* const name = "SUMMARY;ENCODING=QUOTED-PRINTABLE;CHARSET=ISO-8859-1:";
    size_t length = 0;
    encodeQP(text, (size_t)text.GetLength(), strlen(name), line, sizeof line, &length);
    printf("%s%s\n", name, line);
    return 0;
}

// Prints:
// 8859-1: Café de la Paix (code 0)
// 936: 中文 (code 0)
// 950: 中文 (code 0)
// KOI9: A (code 2024)
// SUMMARY;ENCODING=QUOTED-PRINTABLE;CHARSET=ISO-8859-1:Caf=E9; 100 % =3D all
