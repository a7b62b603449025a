// Preference stores of 10,000 keys: MMPREF on its XML file against QSettings
// on an INI file holding the same keys and values. Opening, reading one key,
// and setting 100 changed keys followed by a write-back.
#include <benchmark/benchmark.h>

#include <QSettings>
#include <QString>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "mmpref/mmpref.h"

namespace {

constexpr int kGroups = 100;
constexpr int kKeysPerGroup = 100;
constexpr MMPREF_PRODUCTS kProduct = MMPREF_YARL;

// Both files with the same 10,000 keys (ints and strings alternating), in a
// private sandbox made once per run.
struct Stores {
  Stores() {
    char model[] = "/tmp/mmpref_bench.XXXXXX";
    root = mkdtemp(model);
    std::filesystem::create_directories(root + "/tmp");
    setenv("MORVELLANTH_MMPREF_SANDBOX", root.c_str(), 1);
    setenv("TMPDIR", (root + "/tmp").c_str(), 1);
    setenv("MORVELLANTH_MACHINE_PREFERENCE", (root + "/none.xml").c_str(), 1);
    setenv("MORVELLANTH_SITE_PREFERENCE", (root + "/none.xml").c_str(), 1);
    ini = QString::fromStdString(root + "/Yarl.ini");

    for (int g = 0; g < kGroups; ++g)
      for (int k = 0; k < kKeysPerGroup; ++k)
        keys.push_back("group" + std::to_string(g) + "/key" + std::to_string(k));

    MMPREF xml(kProduct, false);
    QSettings other(ini, QSettings::IniFormat);
    for (size_t i = 0; i < keys.size(); ++i) {
      const QVariant value = i % 2 ? QVariant(QString("value %1").arg(i)) : QVariant(static_cast<int>(i));
      xml.set(keys[i], value, "");
      other.setValue(QString::fromStdString(keys[i]), value);
    }
    xml.syncSettings();
    other.sync();
  }
  ~Stores() { std::filesystem::remove_all(root); }

  std::string root;
  QString ini;
  std::vector<std::string> keys;
};

Stores& stores() {
  static Stores instance;
  return instance;
}

void BM_Open_MMPREF(benchmark::State& state) {
  stores();
  for (auto _ : state) {
    MMPREF store(kProduct, false);
    benchmark::DoNotOptimize(&store);
  }
}
BENCHMARK(BM_Open_MMPREF)->Unit(benchmark::kMillisecond);

// QSettings keeps a closed INI file in memory and reuses it while the file is
// unchanged; a new time stamp makes each open read the file, as a program's
// first open does.
void BM_Open_QSettingsIni(benchmark::State& state) {
  const QString ini = stores().ini;
  const std::filesystem::path path = ini.toStdString();
  auto stamp = std::filesystem::last_write_time(path);
  for (auto _ : state) {
    state.PauseTiming();
    stamp -= std::chrono::seconds(1);
    std::filesystem::last_write_time(path, stamp);
    state.ResumeTiming();
    QSettings store(ini, QSettings::IniFormat);
    benchmark::DoNotOptimize(&store);
  }
}
BENCHMARK(BM_Open_QSettingsIni)->Unit(benchmark::kMillisecond);

// QSettings parses an INI section only when a key of it is first asked for;
// asking for every other key makes both sides read the whole file.
void BM_OpenAndReadAll_MMPREF(benchmark::State& state) {
  const std::vector<std::string>& keys = stores().keys;
  for (auto _ : state) {
    MMPREF store(kProduct, false);
    MMpref_Err err;
    for (size_t i = 0; i < keys.size(); i += 2) benchmark::DoNotOptimize(store.get<int>(keys[i].c_str(), &err));
  }
}
BENCHMARK(BM_OpenAndReadAll_MMPREF)->Unit(benchmark::kMillisecond);

void BM_OpenAndReadAll_QSettingsIni(benchmark::State& state) {
  const QString ini = stores().ini;
  const std::vector<std::string>& keys = stores().keys;
  for (auto _ : state) {
    QSettings store(ini, QSettings::IniFormat);
    for (size_t i = 0; i < keys.size(); i += 2)
      benchmark::DoNotOptimize(store.value(QString::fromStdString(keys[i])).toInt());
  }
}
BENCHMARK(BM_OpenAndReadAll_QSettingsIni)->Unit(benchmark::kMillisecond);

void BM_Get_MMPREF(benchmark::State& state) {
  const std::vector<std::string>& keys = stores().keys;
  MMPREF store(kProduct, false);
  size_t i = 0;
  for (auto _ : state) {
    MMpref_Err err;
    benchmark::DoNotOptimize(store.get<int>(keys[i].c_str(), &err));
    i = (i + 2) % keys.size();
  }
}
BENCHMARK(BM_Get_MMPREF);

void BM_Get_QSettingsIni(benchmark::State& state) {
  const std::vector<std::string>& keys = stores().keys;
  QSettings store(stores().ini, QSettings::IniFormat);
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(store.value(QString::fromStdString(keys[i])).toInt());
    i = (i + 2) % keys.size();
  }
}
BENCHMARK(BM_Get_QSettingsIni);

void BM_Set100AndSync_MMPREF(benchmark::State& state) {
  const std::vector<std::string>& keys = stores().keys;
  MMPREF store(kProduct, false);
  int round = 0;
  for (auto _ : state) {
    ++round;
    for (size_t i = 0; i < 200; i += 2) store.set(keys[i * 37 % keys.size()], static_cast<int>(i) + round, "");
    store.syncSettings();
  }
}
BENCHMARK(BM_Set100AndSync_MMPREF)->Unit(benchmark::kMillisecond);

void BM_Set100AndSync_QSettingsIni(benchmark::State& state) {
  const std::vector<std::string>& keys = stores().keys;
  QSettings store(stores().ini, QSettings::IniFormat);
  int round = 0;
  for (auto _ : state) {
    ++round;
    for (size_t i = 0; i < 200; i += 2)
      store.setValue(QString::fromStdString(keys[i * 37 % keys.size()]), static_cast<int>(i) + round);
    store.sync();
  }
}
BENCHMARK(BM_Set100AndSync_QSettingsIni)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
