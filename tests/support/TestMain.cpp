// main() of the test programs: a Qt application, and no warning of Qt's or the library's goes unnoticed.
#include "DebugStreamInternal.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

namespace {

class DebugStreamListener : public testing::EmptyTestEventListener
{
    void OnTestStart(const testing::TestInfo&) override { test::beginDebugStream(); }

    void OnTestEnd(const testing::TestInfo&) override
    {
        for (const QString& message : test::unexpectedMessages())
            ADD_FAILURE() << "debug stream: " << message.toStdString();
    }
};

} // namespace

int main(int argc, char* argv[])
{
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    test::installDebugStream();
    testing::UnitTest::GetInstance()->listeners().Append(new DebugStreamListener);
    return RUN_ALL_TESTS();
}
