#include "base/patient_files.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <future>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace tarnel {

namespace {

/// Looks for a moment before its caller goes to sleep: waking a thread takes many times as long as most
/// calls.
template <class Condition>
void LookForAMoment(Condition isMet) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::microseconds(50);
  while (!isMet() && std::chrono::steady_clock::now() < end)
    std::this_thread::yield();
}

}  // namespace

/// One thread that does one call after the other. Without it, where the system gives none, the caller does.
class PatientFiles::Helper {
 public:
  explicit Helper(Dialogue& dialogue) : m_dialogue(dialogue) {
    try {
      m_thread = std::thread([this] { Work(); });
    } catch (const std::system_error&) {
    }
  }
  Helper(const Helper&) = delete;
  Helper& operator=(const Helper&) = delete;
  ~Helper() {
    if (!m_thread.joinable()) return;
    HandOver([this] { m_isOver = true; });
    m_thread.join();
  }

  template <class Call>
  auto Run(Call&& call) -> decltype(call()) {
    if (!m_thread.joinable()) return call();
    std::packaged_task<decltype(call())()> task(std::forward<Call>(call));
    auto result = task.get_future();
    const Waited waited(result);
    HandOver([&task] { task(); });
    LookForAMoment([&] { return result.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
    while (result.wait_for(std::chrono::milliseconds(20)) == std::future_status::timeout)
      m_dialogue.Yield();
    return result.get();
  }

 private:
  /// The thread is done with the task when it leaves the scope, whatever a yield throws.
  template <class Future>
  class Waited {
   public:
    explicit Waited(Future& result) : m_result(result) {}
    Waited(const Waited&) = delete;
    Waited& operator=(const Waited&) = delete;
    ~Waited() {
      if (m_result.valid()) m_result.wait();
    }

   private:
    Future& m_result;
  };

  void HandOver(std::function<void()> call) {
    {
      const std::lock_guard lock(m_mutex);
      m_call = std::move(call);
      m_isCalled = true;
    }
    m_hasCall.notify_one();
  }

  void Work() {
    while (!m_isOver) {
      LookForAMoment([this] { return m_isCalled.load(); });
      std::unique_lock lock(m_mutex);
      m_hasCall.wait(lock, [this] { return m_call != nullptr; });
      const std::function<void()> call = std::exchange(m_call, nullptr);
      m_isCalled = false;
      lock.unlock();
      call();
    }
  }

  Dialogue& m_dialogue;
  std::mutex m_mutex;
  std::condition_variable m_hasCall;
  std::function<void()> m_call;
  std::atomic<bool> m_isCalled = false;  ///< there is one; read without the mutex too
  bool m_isOver = false;                 ///< the thread's own
  std::thread m_thread;
};

/// Open for reading, so what changes a file fails at once and needs no patience.
class PatientFiles::PatientFile : public File {
 public:
  PatientFile(std::unique_ptr<File> inner, Helper& helper) : m_inner(std::move(inner)), m_helper(helper) {}

  std::size_t ReadAt(Position from, MutableBytes into) override {
    return m_helper.Run([&] { return m_inner->ReadAt(from, into); });
  }
  FileStat Stat() override {
    return m_helper.Run([&] { return m_inner->Stat(); });
  }
  void WriteAt(Position to, Bytes bytes) override { m_inner->WriteAt(to, bytes); }
  void Truncate(Length length) override { m_inner->Truncate(length); }
  void SetMode(mode_t mode) override { m_inner->SetMode(mode); }
  void Sync() override { m_inner->Sync(); }
  void Lock() override { m_inner->Lock(); }
  void Close() override { m_inner->Close(); }

 private:
  std::unique_ptr<File> m_inner;
  Helper& m_helper;
};

PatientFiles::PatientFiles(Files& inner, Dialogue& dialogue)
    : m_inner(inner), m_helper(std::make_unique<Helper>(dialogue)) {}

PatientFiles::~PatientFiles() = default;

std::optional<FileStat> PatientFiles::Stat(const Path& path, Links links) {
  return m_helper->Run([&] { return m_inner.Stat(path, links); });
}

Path PatientFiles::Canonical(const Path& path) {
  return m_helper->Run([&] { return m_inner.Canonical(path); });
}

std::unique_ptr<File> PatientFiles::OpenToRead(const Path& path) {
  return std::make_unique<PatientFile>(m_helper->Run([&] { return m_inner.OpenToRead(path); }), *m_helper);
}

std::vector<FolderEntry> PatientFiles::List(const Path& folder) {
  return m_helper->Run([&] { return m_inner.List(folder); });
}

}  // namespace tarnel
