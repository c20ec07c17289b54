// The main of every test program: the Qt application first, then GoogleTest.
#include <gtest/gtest.h>

#ifdef KELVANE_TESTING_GUI
#include <QtWidgets/QApplication>
using TestApplication = QApplication;
#else
#include <QtCore/QCoreApplication>
using TestApplication = QCoreApplication;
#endif

int main(int argc, char** argv)
{
    TestApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
