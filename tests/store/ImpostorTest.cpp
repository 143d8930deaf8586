#include "harness/TemporaryDirectory.h"
#include "support/Program.h"

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using testing::HasSubstr;

TEST(Impostor, AnApplicationsOwnSqliteLeavesTheStoreAloneOrIsNamedInTheLog) {
    const TemporaryDirectory data;
    const auto ended = runProgram({VELMORA_IMPOSTOR}, {{"XDG_DATA_HOME", data.path().string()},
                                                       {"VELMORA_API_BASE_URL", "http://127.0.0.1:9/v2"}});
    EXPECT_EQ(ended.status, 0) << ended.errors;
    EXPECT_EQ(ended.output, VELMORA_HAS_OWN_SQLITE ? "1\n" : "0\n");
    EXPECT_EQ(ended.errors.find("libsqlite3 is not the shared library's") == std::string::npos,
              bool{VELMORA_HAS_OWN_SQLITE})
        << ended.errors;
    EXPECT_THAT(ended.errors, HasSubstr("libcurl is not the shared library's: its calls go to "));
}

}  // namespace

}  // namespace velmora::test
