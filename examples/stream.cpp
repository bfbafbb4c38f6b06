// Writes a record into one text and reads it back.
#include <QelUtility/QelUtility.h>
#include <stdio.h>

struct Event {
    int start = 0;  // a code date
    VStr summary;
    VStrArray people;
    bool isPrivate = false;
};

static CBxDataStream& operator<<(CBxDataStream& out, Event& event) {
    return out << event.start << (const char*)event.summary << event.people << event.isPrivate;
}

static CBxDataStream& operator>>(CBxDataStream& in, Event& event) {
    return in >> event.start >> event.summary >> event.people >> event.isPrivate;
}

int main() {
    Event event;
    event.start = ZQ_AlphaToCodeDate("20050615");
    event.summary = "Dinner";
    event.people.Add("Ann");
    event.people.Add("Bo");

    CBxDataStream out;
    out << event;
    VStr text((const char*)out.Storage());  // one C string: fit for a file, a field, a pipe
    for (int i = 0; i < text.GetLength(); ++i) putchar(text[i] == '\x1f' ? '|' : text[i]);
    putchar('\n');

    CBxDataStream in;
    Event copy;
    in.Initialize(text);
    in >> copy;
    char date[9];
    printf("%s %s, %d people\n", ZQ_CodeDateToAlpha(copy.start, date), (const char*)copy.summary,
           copy.people.GetSize());
    try {
        in.Initialize("12x");
        in >> copy;
    } catch (int code) {  // readers and writers throw an int
        printf("code %d\n", code);
    }
    return 0;
}

// Prints:
// 9674|Dinner|2|Ann|Bo|
// 20050615 Dinner, 2 people
// code 2015
