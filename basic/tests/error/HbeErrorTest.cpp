#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/error/HbeUserError.h>

namespace
{
void operationThatFails(int)
{
    HBE_PROGRAMMING_ERROR("module\\Source", "The rank 100%1 is out of range");
}
} // namespace

TEST(HbeError, aProgrammingErrorNamesOperationAndSource)
{
    try {
        operationThatFails(1);
        FAIL();
    } catch (const HbeError& error) {
        // A placeholder inside the message is no placeholder of the template.
        const QString message = error.getMessage();
        EXPECT_TRUE(message.startsWith("'void ")) << message.toStdString();
        EXPECT_TRUE(message.contains("operationThatFails(int)' in file 'module\\Source' failed:"));
        EXPECT_TRUE(message.endsWith("failed:\n\nThe rank 100%1 is out of range"));
    }
}

TEST(HbeError, everyKindIsAStandardExceptionInUtf8)
{
    const QString text = QString::fromUtf8("Pfad \xC3\xBC: \xE2\x82\xAC");
    const auto whatOf = [&text](auto error) -> std::string {
        try {
            throw decltype(error)(text);
        } catch (const std::exception& caught) {
            return caught.what();
        }
    };
    const std::string utf8 = text.toUtf8().toStdString();
    EXPECT_EQ(whatOf(HbeError(text)), utf8);
    EXPECT_EQ(whatOf(HbeUserError(text)), utf8);
    EXPECT_EQ(whatOf(HbeDiskError(text)), utf8);
    EXPECT_EQ(whatOf(HbeProgrammingError(text)), utf8);
    EXPECT_THROW(throw HbeDiskError(text), HbeError);
}
