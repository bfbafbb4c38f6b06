// Every reader of the stream, in an order that the input gives, over a text that it gives.
#include "Fuzz.h"
#include "QelUtility/BxDataStream.h"
#include "QelUtility/VStrArray.h"

using namespace qel::fuzz;

namespace {

template <class T>
void readNumber(CBxDataStream& stream) {
    T value{};
    stream >> value;
}

void readOne(CBxDataStream& stream, unsigned kind) {
    switch (kind) {
        case 0:
            return readNumber<char>(stream);
        case 1:
            return readNumber<unsigned char>(stream);
        case 2:
            return readNumber<short>(stream);
        case 3:
            return readNumber<unsigned short>(stream);
        case 4:
            return readNumber<int>(stream);
        case 5:
            return readNumber<unsigned>(stream);
        case 6:
            return readNumber<long>(stream);
        case 7:
            return readNumber<unsigned long>(stream);
        case 8:
            return readNumber<long long>(stream);
        case 9:
            return readNumber<unsigned long long>(stream);
        case 10:
            return readNumber<bool>(stream);
        case 11: {
            VStr text;
            stream >> text;
            return;
        }
        case 12: {
            VStrArray list;
            stream >> list;
            return;
        }
        case 13: {
            CBxIntList list;
            stream >> list;
            return;
        }
        case 14: {
            CBxDataStream nested;
            stream >> nested;
            return;
        }
        case 15: {
            char* const none = nullptr;
            stream >> none;
            return;
        }
        default: {
            unsigned char* data = nullptr;
            long size = 0;
            const int result = stream.Read(data, size);
            FUZZ_CHECK(result == 0 || result == 2015 || result == 7004 || result == 7011);
            FUZZ_CHECK(size >= 0);
            if (data != nullptr) FUZZ_CHECK(data[size] == 0);
            std::free(data);
        }
    }
}

}  // namespace

QEL_FUZZ_TARGET(data_stream) {
    unsigned kinds[24];
    const unsigned count = in.choose(24);
    for (unsigned i = 0; i < count; ++i) kinds[i] = in.choose(17);
    std::string text = in.text();
    CBxDataStream stream;
    FUZZ_CHECK(stream.Initialize(reinterpret_cast<unsigned char*>(text.data()),
                                 static_cast<unsigned long>(text.size()), true) == 0);
    for (unsigned i = 0; i < count; ++i) {
        try {
            readOne(stream, kinds[i]);
        } catch (int code) {
            FUZZ_CHECK(code == 2001 || code == 2015 || code == 2023);
        }
    }
}
