// A queue of jobs, and threads that take from it; see the header.

#include "scan/pipeline/ordered_work.h"

#include <utility>

namespace {

constexpr std::size_t jobs_per_thread = 4;
constexpr std::size_t most_bytes = std::size_t{64} << 20; // that are waiting or in work

} // namespace

ordered_work::ordered_work(unsigned threads, const std::function<work_function()>& make_work,
                           write_function write)
    : m_most_jobs(threads == 1 ? 0 : jobs_per_thread * threads), m_own_work(make_work()),
      m_write(std::move(write)) {
    for (unsigned i = 1; i < threads; ++i)
        m_workers.emplace_back([this, work = make_work()] { run_worker(work); });
}

ordered_work::~ordered_work() {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_is_over = true;
        m_waiting.clear();
    }
    m_there_is_work.notify_all();
    for (std::thread& worker : m_workers) worker.join();
}

std::unique_ptr<batch> ordered_work::fresh() {
    if (m_written.empty()) return std::make_unique<batch>();
    std::unique_ptr<batch> again = std::move(m_written.back());
    m_written.pop_back();
    again->reuse();
    return again;
}

bool ordered_work::take(std::unique_ptr<batch> full) {
    auto added = std::make_unique<job>();
    added->m_batch = std::move(full);
    m_bytes += added->m_batch->m_bytes.capacity();
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_waiting.push_back(added.get());
        m_jobs.push_back(std::move(added));
    }
    m_there_is_work.notify_one();
    while (write_first_if_done()) {}
    while (m_goes_on && is_full()) {
        work_or_wait();
        while (write_first_if_done()) {}
    }
    return m_goes_on;
}

/// Whether a batch must be written before another one is made.
bool ordered_work::is_full() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_jobs.size() > m_most_jobs || (m_bytes > most_bytes && !m_jobs.empty());
}

bool ordered_work::finish() {
    for (;;) {
        while (write_first_if_done()) {}
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            if (m_jobs.empty() || !m_goes_on) return m_goes_on;
        }
        work_or_wait();
    }
}

void ordered_work::run_worker(const work_function& work) {
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        m_there_is_work.wait(lock, [this] { return m_is_over || !m_waiting.empty(); });
        if (m_is_over) return;
        job& next = *m_waiting.front();
        m_waiting.pop_front();
        lock.unlock();
        work_on(next, work);
        lock.lock();
        next.m_is_done = true;
        m_job_is_done.notify_one();
    }
}

void ordered_work::work_on(job& one, const work_function& work) noexcept {
    try {
        work(*one.m_batch);
    } catch (...) {
        one.m_error = std::current_exception();
    }
}

/// Writes the first batch if a thread has worked on it.
bool ordered_work::write_first_if_done() {
    std::unique_ptr<job> first;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_jobs.empty() || !m_jobs.front()->m_is_done) return false;
        first = std::move(m_jobs.front());
        m_jobs.pop_front();
    }
    m_bytes -= first->m_batch->m_bytes.capacity();
    if (first->m_error) std::rethrow_exception(first->m_error);
    if (m_goes_on) m_goes_on = m_write(*first->m_batch);
    m_written.push_back(std::move(first->m_batch));
    return true;
}

/// Works on a batch that is waiting; if there is none, waits for a thread to be done with one.
void ordered_work::work_or_wait() {
    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_waiting.empty()) {
        m_job_is_done.wait(lock, [this] { return m_jobs.empty() || m_jobs.front()->m_is_done; });
        return;
    }
    job& next = *m_waiting.front();
    m_waiting.pop_front();
    lock.unlock();
    work_on(next, m_own_work);
    lock.lock();
    next.m_is_done = true;
}
