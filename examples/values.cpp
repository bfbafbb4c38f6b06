// Takes a structured value and a list of pairs apart.
#include <QelUtility/QelUtility.h>
#include <stdio.h>

int main() {
    // A vCard's name, in which "\;" is not a separator. The backslash has to be named as one too.
    CBxParseValues name;
    name.SetSeparators(";\\");
    name.SetAddEmptyItems(true);
    name.BuildSymbolArray("Smith\\; Sons;Ann;;Dr.");
    for (int i = 0; i < name.GetSize(); ++i) printf("%d: \"%s\"\n", i, (const char*)name[i]);

    CBxParsePairValues rule;
    rule.SetSeparators(";");
    rule.BuildSymbolArray("FREQ=WEEKLY;INTERVAL=2");
    printf("every %s weeks\n", (const char*)rule.GetValueOf("INTERVAL"));
    return 0;
}

// Prints:
// 0: "Smith; Sons"
// 1: "Ann"
// 2: ""
// 3: "Dr."
// every 2 weeks
