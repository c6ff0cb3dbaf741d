#include "solver/results/writer_thread.h"

#include <system_error>
#include <utility>

namespace qvslv {

WriterThread::WriterThread() {
  try {
    m_thread = std::thread(&WriterThread::work, this);
  } catch (const std::system_error&) {  // the jobs are then done where they are posted
  }
}

WriterThread::~WriterThread() {
  {
    const std::lock_guard lock(m_mutex);
    m_ending = true;
  }
  m_changed.notify_all();
  if (m_thread.joinable()) m_thread.join();
}

void WriterThread::post(std::function<void()> job) {
  if (!m_thread.joinable()) return job();
  constexpr std::size_t k_most_in_line = 8;
  std::unique_lock lock(m_mutex);
  m_changed.wait(lock, [this] { return m_failed || m_jobs.size() < k_most_in_line; });
  tell_failure();
  if (!m_failed) m_jobs.push_back(std::move(job));
  m_changed.notify_all();
}

void WriterThread::finish() {
  std::unique_lock lock(m_mutex);
  m_changed.wait(lock, [this] { return m_failed || m_jobs.empty(); });
  tell_failure();
}

void WriterThread::tell_failure() {
  if (m_failure) std::rethrow_exception(std::exchange(m_failure, nullptr));
}

void WriterThread::work() {
  std::unique_lock lock(m_mutex);
  for (;;) {
    m_changed.wait(lock, [this] { return m_ending || !m_jobs.empty(); });
    if (m_ending) return;
    const std::function<void()> job = std::move(m_jobs.front());
    lock.unlock();
    std::exception_ptr failure;
    try {
      job();
    } catch (...) {
      failure = std::current_exception();
    }
    lock.lock();
    m_jobs.pop_front();
    m_failure = failure;
    m_failed = failure != nullptr;
    m_changed.notify_all();
    if (m_failed) return;
  }
}

}  // namespace qvslv
