#pragma once
#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

namespace veltor::bench {

// A busy PC for the benchmarks' loaded runs: as many threads as asked, spinning at normal priority for as
// long as this lives.
class SpinningLoad {
public:
    explicit SpinningLoad(unsigned threads) {
        for (unsigned i = 0; i < threads; ++i) {
            spinners.emplace_back([this] {
                volatile uint64_t work = 0;
                while (!stop.load(std::memory_order_relaxed)) work = work + 1;
            });
        }
    }
    ~SpinningLoad() {
        stop.store(true);
        for (std::thread& spinner : spinners) spinner.join();
    }
    SpinningLoad(const SpinningLoad&) = delete;
    SpinningLoad& operator=(const SpinningLoad&) = delete;

private:
    std::atomic<bool> stop{false};
    std::vector<std::thread> spinners;
};

}  // namespace veltor::bench
