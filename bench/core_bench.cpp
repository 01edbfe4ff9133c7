// What start-up costs: loading every setting, and looking up every caption of the table.

#include "core/Language.h"
#include "core/SettingsStore.h"
#include "core/ThemeClass.h"

#include <QGuiApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

void GetTextOfEveryKey(benchmark::State& state)
{
    LanguageTable table;
    table.LoadTable(state.range(0) != 0);
    const QStringList keys = table.Keys();
    for (auto _ : state)
        for (const QString& key : keys)
            benchmark::DoNotOptimize(table.GetText(key));
    state.counters["keys"] = static_cast<double>(keys.size());
    state.counters["per_key_ns"] = benchmark::Counter(static_cast<double>(keys.size()),
                                                      benchmark::Counter::kIsIterationInvariantRate |
                                                          benchmark::Counter::kInvert);
}
BENCHMARK(GetTextOfEveryKey)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void LoadAllSettings(benchmark::State& state)
{
    QTemporaryDir dir;
    QSettingsStore store(dir.filePath(QStringLiteral("bench.conf")));
    ThemeEnvironment env = ThemeEnvironment::FromSystem();
    std::vector<MonitorRecord> monitors;
    { ThemeClass(store, env, monitors).Save(); }
    for (auto _ : state) {
        ThemeClass theme(store, env, monitors);
        benchmark::DoNotOptimize(theme.LyricsFont);
    }
}
BENCHMARK(LoadAllSettings)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
