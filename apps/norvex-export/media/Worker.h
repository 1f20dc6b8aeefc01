/// A thread that does in turn what it is given.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace NorvexExport::Media {

/// Used by one thread. Starts its own with the first work.
class Worker {
public:
    using Work = std::function<void()>;

    Worker() = default;
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    ~Worker() { Stop(); }

    /// Lets the work be done behind all that was given before, and waits while too much stands in line. `bytes` says
    /// how much memory the work holds. Throws what earlier work threw, after which nothing more is done.
    void Do(std::size_t bytes, Work work);

    /// Waits until all is done. Throws what it threw.
    void Finish();

    /// Drops what has not begun, and waits for the rest. No work is to follow.
    void Stop() noexcept;

private:
    struct Item {
        std::size_t bytes;
        Work work;
    };

    void Run();
    void RequireSuccess() const;

    std::thread m_thread;
    std::mutex m_mutex;                  // of all that follows
    std::condition_variable m_wakes;     // the worker
    std::condition_variable m_advances;  // whoever waits for it
    std::deque<Item> m_line;
    std::size_t m_bytes = 0;  // of what stands in line or is being done
    bool m_isStopping = false;
    std::exception_ptr m_failure;
};

}  // namespace NorvexExport::Media
