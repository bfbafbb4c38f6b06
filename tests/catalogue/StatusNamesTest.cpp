// Statuses and operations by name, at the edges of their tables.
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "QelUtility/BxStatusNames.h"

namespace {

TEST(StatusNames, StatusTextHasNamesAndNumbers) {
    const std::pair<int, const char*> rows[] = {{0, "Status=EOK"},
                                                {7, "Status=Busy"},
                                                {15, "Status=IllegalData"},
                                                {28, "Status=ClientMustReSync"},
                                                {41, "Status=DummyOperation"},
                                                {42, "Status=CAPOPST_"},
                                                {43, "Status=43"},
                                                {-1, "Status=-1"},
                                                {INT_MIN, "Status=-2147483648"}};
    for (const auto& [status, text] : rows) EXPECT_STREQ(StatusText(status), text);
}

TEST(StatusNames, OperationsGoBothWays) {
    int named = 0;
    for (unsigned long code = 9990; code < 20100; ++code) {
        const char* name = OperationName(code);
        if (name == nullptr) continue;
        ++named;
        unsigned long found = 0;
        EXPECT_EQ(OperationFromTag(("<" + std::string(name) + ">").c_str(), found), 0);
        EXPECT_EQ(found, code);
    }
    EXPECT_EQ(named, 25);
    EXPECT_STREQ(OperationName(10009), "ASSIGN_CLNT_INST_ID_STATUS");
    EXPECT_STREQ(OperationName(20011), "ASSIGN_CLIENT_INSTANCE_ID");
    for (const unsigned long code : {0UL, 9999UL, 10012UL, 20004UL, 20014UL, 0xFFFFFFFFUL})
        EXPECT_EQ(OperationName(code), nullptr) << code;

    unsigned long code = 5;
    for (const char* tag : {"<ADD >", "ADD", "<ADD", "ADD>", "<>", "<", "", "<ADD>x", " <ADD>",
                            "<CLNT>", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(OperationFromTag(tag, code), QEL_MALFORMED) << (tag == nullptr ? "null" : tag);
        EXPECT_EQ(code, 5U);
    }
    EXPECT_EQ(OperationFromTag("<add>", code), 0);
    EXPECT_EQ(code, 20000U);
    EXPECT_EQ(OperationFromTag("<Recover_Clnt_Inst_Id_Status>", code), 0);
    EXPECT_EQ(code, 10011U);
}

}  // namespace
