// Start-up to the main window shown, as whole processes: halvane_startup on
// each fixture, each run paired with a run of the main form alone
// (halvane_formwindow: every control built and shown, no logic) just before
// it; the form alone is itself paired with the empty six-tab window
// (halvane_emptywindow) first. The clock runs from the process's start until
// it reports its window shown; the tear-down after that is no part of
// start-up. The ratio is the median of the pairs' ratios. A section of
// halvane_bench (bench_maps.cpp owns main).
#include "BenchSupport.h"

#include <QElapsedTimer>
#include <QProcess>
#include <cstdio>

using namespace halvane::bench;

namespace {

struct Run {
    double wallMs = -1;
    double cpuMs = -1;
};

QString program(const char* name) {
    return QCoreApplication::applicationDirPath() + QLatin1Char('/') + QLatin1String(name);
}

// Runs a program offscreen with its own runtime folder, so that a copy of
// Halvane running elsewhere on the machine is not taken for a second copy.
Run runProgram(const QString& path, const QStringList& arguments, const QString& runtime) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime);
    process.setProcessEnvironment(environment);
    process.setStandardErrorFile(QProcess::nullDevice());
    QElapsedTimer clock;
    clock.start();
    process.start(path, arguments);
    // The program prints its processor time once its window is shown.
    while (!process.canReadLine() && process.waitForReadyRead(120000)) {
    }
    const double wallMs = clock.nsecsElapsed() / 1e6;
    const QByteArray line = process.readLine();
    if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0) {
        process.kill();
        process.waitForFinished();
        return {};
    }
    Run run;
    run.wallMs = wallMs;
    bool ok = false;
    run.cpuMs = line.trimmed().toDouble(&ok);
    if (!ok)
        return {};
    return run;
}

} // namespace

int benchStartup(int pairs) {
    QTemporaryDir dir;
    QTemporaryDir runtime;
    QFile::setPermissions(runtime.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    struct Fixture {
        QString name;
        QStringList prepare;
    };
    QList<Fixture> fixtures{{QStringLiteral("delivered files"), {QStringLiteral("delivered")}},
                            {QStringLiteral("largest catalogue"), {QStringLiteral("largest")}}};
    for (int tab = 0; tab < 6; ++tab) {
        fixtures.append({QStringLiteral("largest, all selected, LastTab %1").arg(tab),
                         {QStringLiteral("selected"), QString::number(tab)}});
    }
    const QString startup = program("halvane_startup");
    const QString form = program("halvane_formwindow");
    const QString empty = program("halvane_emptywindow");
    const QString cpu = QStringLiteral("--cpu");

    std::printf("\nStart-up to the window shown, whole processes, %d pairs each, "
                "each run after one of the main form alone:\n",
                pairs);
    std::printf("%-36s %10s %10s %8s %10s %10s %8s\n", "fixture", "wall ms", "form ms", "ratio",
                "cpu ms", "form cpu", "ratio");
    // The first row: the form alone, each run after one of the empty window.
    for (int f = -1; f < fixtures.size(); ++f) {
        const QString folder = dir.filePath(QStringLiteral("fixture%1").arg(f));
        const QString name =
            f < 0 ? QStringLiteral("form alone (base: empty window)") : fixtures[f].name;
        if (f >= 0 && QProcess::execute(startup, QStringList{QStringLiteral("--prepare"), folder} +
                                                     fixtures[f].prepare) != 0) {
            std::fprintf(stderr, "cannot prepare %s\n", qPrintable(name));
            return 1;
        }
        std::vector<double> wall, baseWall, cpuTime, baseCpu;
        for (int pair = 0; pair < pairs; ++pair) {
            const Run base = runProgram(f < 0 ? empty : form, {cpu}, runtime.path());
            const Run measured = f < 0 ? runProgram(form, {cpu}, runtime.path())
                                       : runProgram(startup, {folder, cpu}, runtime.path());
            if (base.wallMs < 0 || measured.wallMs < 0) {
                std::fprintf(stderr, "a start-up on %s failed\n", qPrintable(name));
                return 1;
            }
            baseWall.push_back(base.wallMs);
            wall.push_back(measured.wallMs);
            baseCpu.push_back(base.cpuMs);
            cpuTime.push_back(measured.cpuMs);
        }
        std::printf("%-36s %10.1f %10.1f %7.2fx %10.1f %10.1f %7.2fx\n", qPrintable(name),
                    median(wall), median(baseWall), medianRatio(wall, baseWall), median(cpuTime),
                    median(baseCpu), medianRatio(cpuTime, baseCpu));
        std::fflush(stdout);
    }
    return 0;
}
