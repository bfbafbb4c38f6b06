// Strings and arrays under long runs of random operations, beside std::string and std::vector. What
// a standard text cannot say (null or allocated empty) is left to the other tests here.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "QelUtility/VStr.h"
#include "QelUtility/VStrArray.h"

namespace {

class Random {
  public:
    std::size_t below(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(generator_);
    }
    // Short texts mostly, now and then one beyond a block.
    std::string text() {
        std::string result(below(8) == 0 ? below(200) : below(12), ' ');
        for (char& c : result) c = "ab, \tZ\xE9"[below(7)];
        return result;
    }

  private:
    std::mt19937 generator_{1};
};

int whole(std::size_t number) {
    return static_cast<int>(number);
}

std::string text(const VStr& string) {
    return static_cast<const char*>(string);
}

// A position at or past the end counts as the last character.
std::size_t clamped(std::size_t position, const std::string& text) {
    return text.empty() ? 0 : std::min(position, text.size() - 1);
}

TEST(RandomOperations, AStringIsAStandardString) {
    Random random;
    VStr own;
    std::string peer;
    for (int step = 0; step < 50000; ++step) {
        const std::string other = random.text();
        const std::size_t at = random.below(peer.size() + 3);
        const std::size_t count = random.below(12);
        const std::size_t operation = random.below(13);
        SCOPED_TRACE("step " + std::to_string(step) + " operation " + std::to_string(operation));
        switch (operation) {
            case 0:
                own.Empty();
                ASSERT_TRUE(!own);
                own = other.c_str();
                peer = other;
                break;
            case 1:
                own.Catstr(other.c_str());
                peer += other;
                break;
            case 2:
                own += other.c_str();
                peer += other;
                break;
            case 3:
                own += own;
                peer += peer;
                break;
            case 4: {
                const std::size_t end = std::min(count, peer.size());
                ASSERT_EQ(text(own.Left(whole(count))), peer.substr(0, end));
                ASSERT_EQ(text(own.Right(whole(count))), peer.substr(peer.size() - end));
                ASSERT_EQ(text(own.Mid(whole(at))), peer.substr(clamped(at, peer)));
                ASSERT_EQ(text(own.SpanIncluding("ab ")),
                          peer.substr(0, peer.find_first_not_of("ab ")));
                ASSERT_EQ(text(own.SpanExcluding("Z")), peer.substr(0, peer.find('Z')));
                VStr part = own(whole(at), whole(count));
                const std::string peerPart = peer.substr(clamped(at, peer), count);
                ASSERT_EQ(text(part), peerPart);
                ASSERT_EQ(text(own.Mid(whole(at), whole(count))), peerPart);
                part.Substr(own, whole(at), whole(count));
                own.Substr(whole(at), whole(count));
                ASSERT_EQ(text(own), peerPart);
                ASSERT_EQ(static_cast<const char*>(part), peerPart);
                own = part;
                peer = peerPart;
                break;
            }
            case 5:
                own.Cutstr(whole(at), whole(count));
                if (!peer.empty()) peer.erase(clamped(at, peer), count);
                break;
            case 6:
                own.Insert(whole(at), VStr(other.c_str()));
                peer.insert(clamped(at, peer), other);
                break;
            case 7:
                own.TrimLeft();
                peer.erase(0, std::min(peer.find_first_not_of(" \t\r\n"), peer.size()));
                break;
            case 8:
                own.TrimRight();
                peer.erase(peer.find_last_not_of(" \t\r\n") + 1);
                break;
            case 9:
                own.Truncate(whole(at));
                peer.resize(std::min(at, peer.size()));
                break;
            case 10:
                if (peer.empty()) break;
                own.SetAt(whole(at % peer.size()), 'q');
                peer[at % peer.size()] = 'q';
                break;
            case 11: {
                VStr copy(own);
                own <<= copy;
                ASSERT_TRUE(copy.IsEmpty());
                break;
            }
            default:
                if (peer.empty()) break;
                ASSERT_EQ(own.Find(other.c_str()), static_cast<int>(peer.find(other)));
                ASSERT_EQ(own.Find('\xE9'), static_cast<int>(peer.find('\xE9')));
                ASSERT_EQ(own.ReverseFind('a'), static_cast<int>(peer.rfind('a')));
                ASSERT_EQ(own.FindOneOf(",Z"), static_cast<int>(peer.find_first_of(",Z")));
                ASSERT_EQ(own.Compare(other.c_str()) < 0, peer < other);
        }
        ASSERT_EQ(own.GetLength(), whole(peer.size()));
        ASSERT_EQ(static_cast<const char*>(own), peer);
        if (peer.size() > 5000) own = peer.erase(100).c_str();
    }
}

// Operations that the two kinds of arrays share, and the compare.
template <class Array>
std::vector<std::string> contentOf(Array& array) {
    std::vector<std::string> result;
    for (int i = 0; i < array.GetSize(); ++i)
        result.emplace_back(static_cast<const char*>(array[i]));
    return result;
}

TEST(RandomOperations, ArraysAreStandardVectors) {
    Random random;
    VStrArray own;
    Bx_VStrArray grown;
    std::vector<std::string> peer;
    std::vector<std::string> grownPeer;
    for (int step = 0; step < 20000; ++step) {
        const std::string text = random.text();
        const std::size_t at = random.below(peer.size() + 1);
        const std::size_t count = random.below(4);
        switch (random.below(8)) {
            case 0:
            case 1:
                ASSERT_EQ(own.Add(text.c_str()), whole(peer.size()));
                peer.push_back(text);
                break;
            case 2:
                own.InsertAt(whole(at), text.c_str(), whole(count));
                peer.insert(peer.begin() + whole(at), count, text);
                break;
            case 3:
                own.RemoveAt(whole(at), whole(count));
                if (at + count <= peer.size())
                    peer.erase(peer.begin() + whole(at), peer.begin() + whole(at + count));
                break;
            case 4:
                if (at == peer.size()) break;
                own.SetAt(whole(at), text.c_str());
                peer[at] = text;
                break;
            case 5:
                own.SetSize(whole(at + count));
                peer.resize(at + count);
                break;
            case 6:
                if (peer.size() > 60) break;
                own.Append(own);
                for (std::size_t i = 0, size = peer.size(); i < size; ++i)
                    peer.push_back(std::string(peer[i]));
                break;
            default: {
                grown.Add(VStr(text.c_str()));
                grownPeer.push_back(text);
                const auto found = std::find(grownPeer.begin(), grownPeer.end(), text);
                ASSERT_EQ(grown.FindItem(VStr(text.c_str())), found - grownPeer.begin());
                if (grownPeer.size() < 600) break;
                ASSERT_EQ(contentOf(grown), grownPeer);
                grown.RemoveAll();
                grownPeer.clear();
            }
        }
        ASSERT_EQ(contentOf(own), peer) << "step " << step;
    }
}

}  // namespace
