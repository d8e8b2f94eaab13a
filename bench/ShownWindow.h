#pragma once

#include <QTest>
#include <QWidget>
#include <cstdio>
#include <ctime>

// The end of each start-up program the benchmark times: done once the window
// is shown, printing the processor time used (milliseconds) when asked, so
// every program is measured to the same point.
inline int endOnceShown(QWidget& window, bool reportCpu) {
    if (!window.isVisible() || !QTest::qWaitForWindowExposed(&window))
        return 1;
    if (reportCpu)
        std::printf("%.1f\n", std::clock() * 1000.0 / CLOCKS_PER_SEC);
    std::fflush(stdout);
    return 0;
}
