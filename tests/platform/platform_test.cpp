// The platform layer: thread identity and yielding. Also prints which backend ran, so the native
// and the Wine logs each show the backend they exercised.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <set>
#include <thread>
#include <vector>

#include "platform/Platform.h"

namespace vp = velora::platform;

TEST(PlatformBackend, ReportsTheBackendCompiledForThisSystem) {
    std::printf("platform backend: %s\n", vp::BackendName());
    RecordProperty("backend", vp::BackendName());
    EXPECT_STREQ(vp::BackendName(), VELORA_EXPECTED_BACKEND);
}

TEST(PlatformThreadId, IsStablePerThreadAndDistinctBetweenLiveThreads) {
    const std::uint32_t main = vp::CurrentThreadId();
    EXPECT_NE(main, 0u);
    EXPECT_EQ(main, vp::CurrentThreadId());

    constexpr int kThreads = 8;
    std::vector<std::uint32_t> ids(kThreads);
    std::atomic<int> arrived{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            ids[static_cast<std::size_t>(i)] = vp::CurrentThreadId();
            EXPECT_EQ(ids[static_cast<std::size_t>(i)], vp::CurrentThreadId());
            // Keep every thread alive until all have read their id, so ids cannot be reused.
            arrived.fetch_add(1);
            while (arrived.load() < kThreads) vp::YieldThread();
        });
    }
    for (auto& t : threads) t.join();
    std::set<std::uint32_t> distinct(ids.begin(), ids.end());
    distinct.insert(main);
    EXPECT_EQ(distinct.size(), static_cast<std::size_t>(kThreads + 1));
}
