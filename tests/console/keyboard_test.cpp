// The key ring: order across the wrap, the 127-key limit, clearing, and two threads meeting under the
// host's lock.
#include "console/keyboard.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

#include "engine/system_resource.h"
#include "engine/vexil_callback.h"

namespace {

// A host that counts how often its lock is taken and knows whether it is held.
struct locking_host : c_vexil_callback {
    void sleep(unsigned int) override {}
    void lock() override
    {
        mutex.lock();
        held = true;
        ++locks;
    }
    void unlock() override
    {
        held = false;
        mutex.unlock();
    }
    void update_screen() override {}
    void update_text() override {}

    std::mutex mutex;
    bool held = false;
    int locks = 0;
};

struct key_ring {
    key_ring()
    {
        resource.p_callback = &host;
        keyboard.p_system_resource = &resource;
    }
    locking_host host;
    c_system_resource resource;
    c_keyboard keyboard;
};

}  // namespace

TEST(key_ring, keeps_order_across_the_wrap)
{
    key_ring ring;
    for (int key = 1; key <= 100; ++key)
        ring.keyboard.push_key(key);
    for (int key = 1; key <= 100; ++key)
        ASSERT_EQ(ring.keyboard.pop_key(), key);
    for (int key = 101; key <= 160; ++key)  // slots 100 to 127, then 0 to 31
        ring.keyboard.push_key(key);
    for (int key = 101; key <= 160; ++key)
        ASSERT_EQ(ring.keyboard.pop_key(), key);
    EXPECT_EQ(ring.keyboard.pop_key(), 0);
}

TEST(key_ring, holds_127_keys_and_drops_the_128th)
{
    key_ring ring;
    for (int key = 1; key <= 128; ++key)
        ring.keyboard.push_key(key);
    EXPECT_EQ(ring.keyboard.pop_key(), 1);
    ring.keyboard.push_key(500);  // one slot free again
    ring.keyboard.push_key(501);  // full again: dropped
    for (int key = 2; key <= 127; ++key)
        ASSERT_EQ(ring.keyboard.pop_key(), key);
    EXPECT_EQ(ring.keyboard.pop_key(), 500);
    EXPECT_EQ(ring.keyboard.pop_key(), 0);
    EXPECT_FALSE(ring.keyboard.kbhit());
}

TEST(key_ring, reports_waiting_keys_and_gives_a_pushed_zero_back_as_zero)
{
    key_ring ring;
    EXPECT_FALSE(ring.keyboard.kbhit());
    EXPECT_EQ(ring.keyboard.pop_key(), 0);
    ring.keyboard.push_key(0);
    ring.keyboard.push_key(65);
    EXPECT_TRUE(ring.keyboard.kbhit());
    EXPECT_EQ(ring.keyboard.pop_key(), 0);
    EXPECT_EQ(ring.keyboard.pop_key(), 65);
    EXPECT_FALSE(ring.keyboard.kbhit());
}

TEST(key_ring, clear_drops_every_waiting_key)
{
    key_ring ring;
    for (int key = 1; key <= 130; ++key)
        ring.keyboard.push_key(key);
    ring.keyboard.clear_keybuffer();
    EXPECT_FALSE(ring.keyboard.kbhit());
    EXPECT_EQ(ring.keyboard.pop_key(), 0);
    ring.keyboard.push_key(7);
    EXPECT_EQ(ring.keyboard.pop_key(), 7);
}

TEST(key_ring, takes_the_hosts_lock_once_for_every_operation)
{
    key_ring ring;
    ring.keyboard.push_key(1);
    ring.keyboard.kbhit();
    ring.keyboard.pop_key();
    ring.keyboard.clear_keybuffer();
    EXPECT_EQ(ring.host.locks, 4);
    EXPECT_FALSE(ring.host.held);
}

TEST(key_ring, hands_keys_from_a_pushing_thread_to_a_popping_thread_in_order)
{
    key_ring ring;
    constexpr int key_count = 20000;
    constexpr int window = 100;  // the pusher stays this far ahead, so the ring never fills
    std::atomic<int> taken{0};
    std::thread pusher([&] {
        for (int key = 1; key <= key_count; ++key) {
            while (key - taken.load() > window)
                std::this_thread::yield();
            ring.keyboard.push_key(key);
        }
    });
    std::vector<int> received;
    while (static_cast<int>(received.size()) < key_count) {
        int key = ring.keyboard.pop_key();
        if (key == 0) {
            std::this_thread::yield();
            continue;
        }
        received.push_back(key);
        taken.store(key);
    }
    pusher.join();
    for (int i = 0; i < key_count; ++i)
        ASSERT_EQ(received[i], i + 1);
    EXPECT_FALSE(ring.host.held);
    EXPECT_FALSE(ring.keyboard.kbhit());
}
