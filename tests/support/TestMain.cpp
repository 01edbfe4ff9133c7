// Test programs run on the offscreen platform, so windows, fonts and local sockets work
// without a display, and with the null audio device. The logic's tests need no QApplication.

#include <gmock/gmock.h>
#ifdef SONGWEAVER_TEST_WIDGETS
#include <QApplication>
using TestApplication = QApplication;
#else
#include <QGuiApplication>
using TestApplication = QGuiApplication;
#endif

int main(int argc, char* argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qEnvironmentVariableIsEmpty("SONGWEAVER_AUDIO"))
        qputenv("SONGWEAVER_AUDIO", "null");
    testing::InitGoogleMock(&argc, argv);
    TestApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
