#include <scard/detail/PcscError.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <winscard.h>

#include <string>

namespace {

using scard::detail::pcscError;
using test::chain;
using testing::ElementsAre;

TEST(PcscError, KeepsTheReturnCodeInTheTextOnly)
{
    for (const LONG code : {SCARD_W_REMOVED_CARD, SCARD_E_NO_READERS_AVAILABLE, SCARD_E_NO_SERVICE}) {
        const std::string text = pcsc_stringify_error(code);
        SCOPED_TRACE(text);
        EXPECT_THAT(
            chain(pcscError(QStringLiteral("init: failed"), code)),
            ElementsAre(test::Entry{"SCard", "init: failed: " + text, 0}));
    }
}

} // namespace
