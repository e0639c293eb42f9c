// main() of the tests that need widgets.
#include <gmock/gmock.h>

#include <QApplication>

int main(int argc, char** argv) {
    const QByteArray platform = qgetenv("ORVEX_TEST_PLATFORM");
    qputenv("QT_QPA_PLATFORM", platform.isEmpty() ? "offscreen" : platform);
    if (const QByteArray scale = qgetenv("ORVEX_TEST_SCALE"); !scale.isEmpty()) {
        qputenv("QT_SCALE_FACTOR", scale);
    }
    QApplication application(argc, argv);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
