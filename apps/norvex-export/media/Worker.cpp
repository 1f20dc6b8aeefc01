#include "Worker.h"

#include <utility>

namespace NorvexExport::Media {

namespace {

/// Enough for the thread not to wait for its work, and little beside what encoders hold.
constexpr std::size_t g_most = std::size_t{8} << 20;

/// What the least of work takes.
constexpr std::size_t g_least = std::size_t{8} << 10;

}  // namespace

void Worker::Do(std::size_t bytes, Work work) {
    bytes += g_least;
    std::unique_lock<std::mutex> lock(m_mutex);
    // One may always stand in line, however large.
    m_advances.wait(lock, [&] { return m_failure || m_line.empty() || m_bytes + bytes <= g_most; });
    RequireSuccess();
    m_line.push_back({bytes, std::move(work)});
    m_bytes += bytes;
    if (!m_thread.joinable()) m_thread = std::thread([this] { Run(); });
    lock.unlock();
    m_wakes.notify_one();
}

void Worker::Finish() {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_advances.wait(lock, [this] { return m_failure || m_bytes == 0; });
    RequireSuccess();
}

void Worker::Stop() noexcept {
    if (!m_thread.joinable()) return;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isStopping = true;
        m_line.clear();
    }
    m_wakes.notify_one();
    m_thread.join();
}

void Worker::Run() {
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        m_wakes.wait(lock, [this] { return m_isStopping || !m_line.empty(); });
        if (m_isStopping) return;
        Item item = std::move(m_line.front());
        m_line.pop_front();
        lock.unlock();
        std::exception_ptr failure;
        try {
            item.work();
        } catch (...) {
            failure = std::current_exception();
        }
        item.work = nullptr;  // what it holds goes before whoever waits goes on
        lock.lock();
        m_bytes -= item.bytes;
        if (failure) {
            m_failure = std::move(failure);
            m_line.clear();
        }
        m_advances.notify_one();
        if (m_failure) return;
    }
}

void Worker::RequireSuccess() const {
    if (m_failure) std::rethrow_exception(m_failure);
}

}  // namespace NorvexExport::Media
