// The value parsers against a plain reading: without escapes, the items are the text's pieces.
#include "Fuzz.h"
#include "QelUtility/BxParseValues.h"

using namespace qel::fuzz;

QEL_FUZZ_TARGET(values) {
    const bool empties = in.flag();
    const bool newLines = in.flag();
    const std::string separators = in.line();
    const std::string text = in.text().c_str();
    CBxParseValues parser;
    parser.SetSeparators(separators.c_str());
    parser.SetAddEmptyItems(empties);
    parser.EscapeNewLines(newLines);
    FUZZ_CHECK(parser.BuildSymbolArray(text.c_str()) == 0);
    std::size_t bytes = 0;
    for (int i = 0; i < parser.GetSize(); ++i)
        bytes += static_cast<std::size_t>(parser[i].GetLength());
    FUZZ_CHECK(bytes <= 2 * text.size());
    if (!empties && text.find('\\') == std::string::npos) {
        const std::string set = separators.c_str();
        int pieces = 0;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t stop = std::min(text.find_first_of(set, at), text.size());
            if (stop > at) {
                FUZZ_CHECK(pieces < parser.GetSize());
                FUZZ_CHECK(text.substr(at, stop - at) == static_cast<const char*>(parser[pieces]));
                ++pieces;
            }
            at = stop + 1;
        }
        FUZZ_CHECK(pieces == parser.GetSize());
    }
    VStr joined;
    parser.ArrayToString(joined, ";", true);
    parser.ArrayToString(joined, separators.c_str(), false);

    CBxParsePairValues pairs;
    pairs.SetSeparators(separators.c_str());
    pairs.SetAddEmptyItems(empties);
    FUZZ_CHECK(pairs.BuildSymbolArray(text.c_str()) == 0);
    for (int i = 0; i < pairs.GetSize(); ++i) pairs.GetValueOf(pairs[i]);
}
