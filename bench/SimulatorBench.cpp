// How fast the simulator hands over a file, beside the same number of bytes that it has ready.

#include "simulator/Frame.h"
#include "simulator/Simulator.h"
#include "tests/simulator/Client.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>

namespace {

using namespace fieldcore::simulator;

constexpr std::size_t kBlocks = 4000; // of 1000 bytes
constexpr std::size_t kLineBytes = kBlocks * 1012;

std::string Start(Simulator& simulator)
{
    std::string error;
    return simulator.Start(error) ? simulator.PortPath() : std::string();
}

Scenario OneFile()
{
    std::string error;
    return ParseScenario("file A 4000000 2026-03-14 01:30", error).value_or(Scenario());
}

void Finish(benchmark::State& state, bool whole)
{
    if (!whole) {
        state.SkipWithError("bytes are missing");
    }
    state.SetBytesProcessed(state.iterations() * static_cast<long>(kLineBytes));
}

/// A download of four megabytes.
void Download(benchmark::State& state)
{
    Simulator simulator(OneFile());
    const test::Client client(Start(simulator));
    DataWriter request;
    const Bytes frame = request.Text("A.Q01", 14).U32(0).U16(0).Frame(0x96);
    bool whole = true;
    for (auto turn : state) {
        whole = client.Send(frame) && client.Receive(kLineBytes).size() == kLineBytes && whole;
    }
    Finish(state, whole);
}
BENCHMARK(Download)->UseRealTime()->Unit(benchmark::kMillisecond);

/// The same bytes, said without being asked for, a block in each call.
void ReadyBytes(benchmark::State& state)
{
    Simulator simulator(OneFile());
    const test::Client client(Start(simulator));
    const Bytes block(1012 * 250); // what the simulator lets wait
    bool whole = true;
    for (auto turn : state) {
        for (std::size_t i = 0; i < kBlocks / 250; ++i) {
            simulator.Send(block);
            whole = client.Receive(block.size()).size() == block.size() && whole;
        }
    }
    Finish(state, whole);
}
BENCHMARK(ReadyBytes)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
