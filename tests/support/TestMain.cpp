// Test programs run with a QApplication on the offscreen platform, so windows, fonts and
// local sockets work without a display, and with the null audio device.

#include <QApplication>
#include <gmock/gmock.h>

int main(int argc, char* argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qEnvironmentVariableIsEmpty("SONGWEAVER_AUDIO"))
        qputenv("SONGWEAVER_AUDIO", "null");
    testing::InitGoogleMock(&argc, argv);
    QApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
