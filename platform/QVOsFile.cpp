#include "platform/QVOsFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <limits>
#include <mutex>
#include <optional>
#include <thread>
#include <unordered_map>

namespace {

// ---- sharing locks -----------------------------------------------------------
//
// Each open handle records its access and its sharing as shared locks on
// reserved bytes at 2^62, far beyond any data the system writes, so they
// never touch file content and never get in the way of a read or a write:
//
//   kGate          taken by an open while it checks and records (below)
//   kAccessRead    held by every handle that reads
//   kAccessWrite   held by every handle that writes
//   kDenyRead      held by every handle that denies reading to others
//   kDenyWrite     held by every handle that denies writing to others
//   kContent       the content lock (LockContent): not a sharing byte
//
// An open takes the gate, looks for a conflicting holder of the opposite
// bytes (its access against their denies, its denies against their access),
// records its own bytes and lets the gate go. The gate makes the look and
// the record one step: a writable open takes it exclusively; a read-only
// open can only take it shared (a write lock needs a writable descriptor),
// which is enough because two read-only opens never conflict when neither
// denies reading (see Open).
//
// The locks are open-file-description locks: they belong to the open file
// description, not to the process, so two opens in one process conflict as
// two processes do, closing one descriptor never drops another's locks, and
// they vanish when the handle is closed or its process dies. A child made by
// fork shares its parent's descriptions, and so their locks, until it execs
// (every descriptor here is close-on-exec) or exits.
constexpr off_t kLockBase = off_t{1} << 62;
constexpr off_t kGate = kLockBase;
constexpr off_t kAccessRead = kLockBase + 1;
constexpr off_t kAccessWrite = kLockBase + 2;
constexpr off_t kDenyRead = kLockBase + 3;
constexpr off_t kDenyWrite = kLockBase + 4;
constexpr off_t kLockCount = 5;
// After the sharing bytes: "is it open?" (InUse) never looks at it.
constexpr off_t kContent = kLockBase + kLockCount;
// New files and directories: the owner reads and writes, the owner's group
// reads, nobody else.
constexpr mode_t kFileMode = 0640;
constexpr mode_t kDirectoryMode = 0750;
// How many times an open tries again when its file was deleted under it.
constexpr int kMaxReaberturas = 100;

constexpr std::uint32_t kAccessMask = 0x000F;
constexpr std::uint32_t kShareMask = 0x00F0;
constexpr std::uint32_t kKnownFlags =
    kAccessMask | kShareMask | QVFILE_MODE_CREATE | QVFILE_MODE_NO_TRUNCATE;
constexpr std::uint64_t kMaxOffset = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());
// Reads and writes are issued in pieces no larger than this (the kernel moves
// at most about 2 GiB per call anyway).
constexpr std::size_t kMaxIo = std::size_t{1} << 30;

struct OpenMode {
  bool read = false;
  bool write = false;
  bool denyRead = false;
  bool denyWrite = false;
  bool create = false;
  bool truncate = false;
};

// Exactly one access and one sharing; no unknown bits.
bool DecodeFlags(std::uint32_t flags, OpenMode* m) {
  if ((flags & ~kKnownFlags) != 0) return false;
  switch (flags & kAccessMask) {
    case QVFILE_MODE_READ: m->read = true; break;
    case QVFILE_MODE_WRITE: m->write = true; break;
    case QVFILE_MODE_READWRITE: m->read = m->write = true; break;
    default: return false;
  }
  switch (flags & kShareMask) {
    case QVFILE_SHARE_EXCLUSIVE: m->denyRead = m->denyWrite = true; break;
    case QVFILE_SHARE_DENY_WRITE: m->denyWrite = true; break;
    case QVFILE_SHARE_DENY_READ: m->denyRead = true; break;
    case QVFILE_SHARE_DENY_NONE: break;
    default: return false;
  }
  m->create = (flags & QVFILE_MODE_CREATE) != 0;
  m->truncate = m->create && (flags & QVFILE_MODE_NO_TRUNCATE) == 0;
  return true;
}

// 0 or the errno of the failure.
int SetLock(int fd, short type, off_t start, bool wait) {
  struct flock fl {};
  fl.l_type = type;
  fl.l_whence = SEEK_SET;
  fl.l_start = start;
  fl.l_len = 1;
  while (fcntl(fd, wait ? F_OFD_SETLKW : F_OFD_SETLK, &fl) != 0) {
    if (errno != EINTR) return errno;
  }
  return 0;
}

// Whether another open file description holds any lock on [start, start+len).
// A write lock is the probe because it conflicts with every lock.
int HeldByOther(int fd, off_t start, off_t len, bool* pHeld) {
  struct flock fl {};
  fl.l_type = F_WRLCK;
  fl.l_whence = SEEK_SET;
  fl.l_start = start;
  fl.l_len = len;
  if (fcntl(fd, F_OFD_GETLK, &fl) != 0) return errno;
  *pHeld = fl.l_type != F_UNLCK;
  return 0;
}

// Checks the open against the handles already open and records it. Returns
// 0 or the Win32 error; on failure some bytes may stay locked, which the
// caller's close releases.
std::uint32_t TakeSharing(int fd, const OpenMode& m, bool writableFd) {
  if (const int e = SetLock(fd, writableFd ? F_WRLCK : F_RDLCK, kGate, true); e != 0) {
    return QVWin32ErrorFromErrno(e);
  }
  struct Rule {
    bool mine;
    off_t theirs;
  };
  const Rule conflicts[] = {{m.read, kDenyRead},
                            {m.write, kDenyWrite},
                            {m.denyRead, kAccessRead},
                            {m.denyWrite, kAccessWrite}};
  std::uint32_t err = 0;
  for (const Rule& r : conflicts) {
    if (!r.mine) continue;
    bool held = false;
    if (const int e = HeldByOther(fd, r.theirs, 1, &held); e != 0) {
      err = QVWin32ErrorFromErrno(e);
      break;
    }
    if (held) {
      err = ERROR_SHARING_VIOLATION;
      break;
    }
  }
  const Rule mine[] = {{m.read, kAccessRead},
                       {m.write, kAccessWrite},
                       {m.denyRead, kDenyRead},
                       {m.denyWrite, kDenyWrite}};
  for (const Rule& r : mine) {
    if (err != 0) break;
    // Nobody holds these bytes with a write lock, so this never waits.
    if (r.mine) {
      if (const int e = SetLock(fd, F_RDLCK, r.theirs, false); e != 0) err = QVWin32ErrorFromErrno(e);
    }
  }
  SetLock(fd, F_UNLCK, kGate, false);
  return err;
}

QVFileIdentity IdentityOf(const struct stat& st) {
  QVFileIdentity id;
  id.bExists = true;
  id.uiDevice = static_cast<std::uint64_t>(st.st_dev);
  id.uiInode = static_cast<std::uint64_t>(st.st_ino);
  id.uiLength = static_cast<std::uint64_t>(st.st_size);
  id.iModifiedNs = static_cast<std::int64_t>(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
  return id;
}

struct NameHookSlot {
  std::mutex mutex;
  QVOsNameHook hook;
};

NameHookSlot& NameHook() {
  static NameHookSlot slot;
  return slot;
}

// 0, or the error the test hook gives the operation.
std::uint32_t AskNameHook(const std::string& from, const std::string& to) {
  QVOsNameHook hook;
  {
    std::lock_guard lock(NameHook().mutex);
    hook = NameHook().hook;
  }
  return hook ? hook(from, to) : 0;
}

// ---- names -------------------------------------------------------------------

// The directory part of a path, for opendir and for syncing.
std::string DirectoryOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  if (slash == 0) return "/";
  return path.substr(0, slash);
}

// ENOENT means a missing file when its directory exists, a missing path
// otherwise, as the platform tells them apart.
std::uint32_t ErrorForPath(int e, const std::string& path) {
  if (e != ENOENT) return QVWin32ErrorFromErrno(e);
  struct stat st {};
  const std::string dir = DirectoryOf(path);
  if (::stat(dir.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) return ERROR_PATH_NOT_FOUND;
  return ERROR_FILE_NOT_FOUND;
}

HRESULT HrForPath(int e, const std::string& path) { return HRESULT_FROM_WIN32(ErrorForPath(e, path)); }

int OpenRetrying(const char* path, int oflags, mode_t mode = 0) {
  int fd;
  do {
    fd = ::open(path, oflags, mode);
  } while (fd < 0 && errno == EINTR);
  return fd;
}

// Whether some handle has the file open, or is opening it. The platform
// refuses to delete or rename a file that is open; this looks at the sharing
// locks. A handle that opens the file between this look and the rename or
// delete is not seen; that window is a few system calls wide.
// Returns 0 or the errno that stopped the look.
int InUse(const std::string& path, bool* pInUse) {
  *pInUse = false;
  const int fd = OpenRetrying(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
  // A file we cannot read is one no handle of ours can have open.
  if (fd < 0) return errno == EACCES ? 0 : errno;
  struct stat st {};
  int e = 0;
  if (::fstat(fd, &st) != 0) {
    e = errno;
  } else if (S_ISREG(st.st_mode)) {
    // The access and deny bytes say who has the file open; the gate is only
    // held for an instant (and, during a removal, by the remover itself).
    e = HeldByOther(fd, kAccessRead, kLockCount - 1, pInUse);
  }
  ::close(fd);
  return e;
}

// The platform refuses to delete, rename or replace a file some handle has
// open. 0 when none has.
std::uint32_t CheckNotInUse(const std::string& path, const struct stat& st) {
  if (!S_ISREG(st.st_mode)) return 0;
  bool inUse = false;
  if (const int e = InUse(path, &inUse); e != 0) return ErrorForPath(e, path);
  return inUse ? ERROR_SHARING_VIOLATION : 0;
}

// Before a name is removed or replaced: neither read-only nor open.
std::uint32_t MayRemove(const std::string& path, const struct stat& st) {
  if (S_ISREG(st.st_mode) && (st.st_mode & 0222) == 0) return ERROR_ACCESS_DENIED;
  return CheckNotInUse(path, st);
}

// The gate of a file held across "is it open?" and the unlink or rename
// that removes its name: no open can check and record its sharing in
// between, so a file is never taken from under a handle that was just
// granted. An open that had reached the file before the unlink finds it
// unlinked afterwards and opens again (see Open).
class CPortaoRemocao {
 public:
  explicit CPortaoRemocao(const std::string& path) {
    fd_ = OpenRetrying(path.c_str(), O_RDWR | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (fd_ >= 0 && SetLock(fd_, F_WRLCK, kGate, true) != 0) {
      ::close(fd_);
      fd_ = -1;
    }
  }
  ~CPortaoRemocao() {
    if (fd_ >= 0) ::close(fd_);
  }
  CPortaoRemocao(const CPortaoRemocao&) = delete;
  CPortaoRemocao& operator=(const CPortaoRemocao&) = delete;

 private:
  int fd_ = -1;
};

// ---- the real file -------------------------------------------------------------

class CQVRealOsFile final : public IQVOsFile {
 public:
  ~CQVRealOsFile() override { Close(); }

  bool Open(const std::string& path, std::uint32_t flags) override {
    Close();
    OpenMode m;
    if (!DecodeFlags(flags, &m)) return Fail(ERROR_INVALID_PARAMETER);
    // Truncating needs a writable descriptor, whatever access was asked for.
    const bool writableFd = m.write || m.truncate;
    // A read-only open that denies reading would check and record under a
    // shared gate, concurrently with other read-only opens that it must
    // refuse (or that must refuse it): it cannot be made race-free. The
    // system never opens that way.
    if (m.denyRead && !writableFd) return Fail(ERROR_INVALID_PARAMETER);

    const std::string resolved = QVResolvePathCase(path);
    // Never O_TRUNC: the sharing check decides whether truncation may happen.
    const int oflags = O_CLOEXEC | O_NOCTTY | (writableFd ? O_RDWR : O_RDONLY) | (m.create ? O_CREAT : 0);
    int fd = -1;
    std::uint32_t err = 0;
    // A file deleted (or replaced) between our open and our sharing check is
    // no longer the file of that name: open the name again.
    for (int tentativa = 0; tentativa < kMaxReaberturas; ++tentativa) {
      fd = OpenRetrying(resolved.c_str(), oflags, kFileMode);
      if (fd < 0) return Fail(ErrorForPath(errno, resolved));
      err = 0;
      struct stat st {};
      if (::fstat(fd, &st) != 0) {
        err = QVWin32ErrorFromErrno(errno);
      } else if (S_ISDIR(st.st_mode)) {
        err = ERROR_ACCESS_DENIED;
      } else if (writableFd && (st.st_mode & 0222) == 0) {
        // The read-only attribute binds whoever we run as: the superuser's
        // open for writing succeeds, so refuse it here.
        err = ERROR_ACCESS_DENIED;
      } else {
        err = TakeSharing(fd, m, writableFd);
      }
      if (err == 0 && ::fstat(fd, &st) == 0 && st.st_nlink == 0) {
        ::close(fd);
        fd = -1;
        continue;
      }
      break;
    }
    if (fd < 0) return Fail(ERROR_SHARING_VIOLATION);
    if (err == 0 && m.truncate) {
      while (::ftruncate(fd, 0) != 0) {
        if (errno != EINTR) {
          err = QVWin32ErrorFromErrno(errno);
          break;
        }
      }
    }
    if (err != 0) {
      ::close(fd);
      return Fail(err);
    }
    fd_ = fd;
    path_ = resolved;
    position_ = 0;
    canRead_ = m.read;
    canWrite_ = m.write;
    return true;
  }

  void Close() override {
    if (fd_ >= 0) ::close(fd_);  // releases the sharing locks
    fd_ = -1;
    path_.clear();
    position_ = 0;
    canRead_ = canWrite_ = false;
  }

  bool IsOpen() const override { return fd_ >= 0; }
  const std::string& Path() const override { return path_; }

  bool Seek(std::uint64_t offset) override {
    if (fd_ < 0) return Fail(ERROR_INVALID_HANDLE);
    if (offset > kMaxOffset) return Fail(ERROR_NEGATIVE_SEEK);
    position_ = offset;
    return true;
  }

  bool SeekToEnd(std::uint64_t* pNewOffset) override {
    std::uint64_t length = 0;
    if (!GetLength(&length)) return false;
    position_ = length;
    if (pNewOffset != nullptr) *pNewOffset = length;
    return true;
  }

  std::uint64_t Position() const override { return position_; }

  bool Read(void* buffer, std::size_t n, std::size_t* pRead) override {
    if (pRead != nullptr) *pRead = 0;
    if (fd_ < 0) return Fail(ERROR_INVALID_HANDLE);
    if (!canRead_) return Fail(ERROR_ACCESS_DENIED);
    if (buffer == nullptr && n > 0) return Fail(ERROR_INVALID_PARAMETER);
    auto* p = static_cast<char*>(buffer);
    std::size_t total = 0;
    int e = 0;
    while (total < n) {
      const ssize_t r = ::pread(fd_, p + total, std::min(n - total, kMaxIo),
                                static_cast<off_t>(position_ + total));
      if (r < 0) {
        if (errno == EINTR) continue;
        e = errno;
        break;
      }
      if (r == 0) break;
      total += static_cast<std::size_t>(r);
    }
    position_ += total;
    if (pRead != nullptr) *pRead = total;
    return e == 0 || Fail(QVWin32ErrorFromErrno(e));
  }

  bool Write(const void* buffer, std::size_t n) override {
    if (fd_ < 0) return Fail(ERROR_INVALID_HANDLE);
    if (!canWrite_) return Fail(ERROR_ACCESS_DENIED);
    if (buffer == nullptr && n > 0) return Fail(ERROR_INVALID_PARAMETER);
    const auto* p = static_cast<const char*>(buffer);
    std::size_t total = 0;
    std::uint32_t err = 0;
    while (total < n) {
      const ssize_t w = ::pwrite(fd_, p + total, std::min(n - total, kMaxIo),
                                 static_cast<off_t>(position_ + total));
      if (w < 0) {
        if (errno == EINTR) continue;
        err = QVWin32ErrorFromErrno(errno);
        break;
      }
      if (w == 0) {
        err = ERROR_WRITE_FAULT;
        break;
      }
      total += static_cast<std::size_t>(w);
    }
    // The position moves past what reached the file, as it does on the platform.
    position_ += total;
    return err == 0 || Fail(err);
  }

  bool GetLength(std::uint64_t* pLength) override {
    if (fd_ < 0) return Fail(ERROR_INVALID_HANDLE);
    struct stat st {};
    if (::fstat(fd_, &st) != 0) return Fail(QVWin32ErrorFromErrno(errno));
    if (pLength != nullptr) *pLength = static_cast<std::uint64_t>(st.st_size);
    return true;
  }

  // The position is left where it was, even beyond the new end.
  bool SetLength(std::uint64_t length) override {
    if (fd_ < 0) return Fail(ERROR_INVALID_HANDLE);
    if (!canWrite_) return Fail(ERROR_ACCESS_DENIED);
    if (length > kMaxOffset) return Fail(ERROR_INVALID_PARAMETER);
    while (::ftruncate(fd_, static_cast<off_t>(length)) != 0) {
      if (errno != EINTR) return Fail(QVWin32ErrorFromErrno(errno));
    }
    return true;
  }

  bool Flush() override {
    if (fd_ < 0) return Fail(ERROR_INVALID_HANDLE);
    while (::fdatasync(fd_) != 0) {
      if (errno != EINTR) return Fail(QVWin32ErrorFromErrno(errno));
    }
    return true;
  }

  bool GetIdentity(QVFileIdentity* pIdentity) override {
    if (fd_ < 0) return Fail(ERROR_INVALID_HANDLE);
    struct stat st {};
    if (::fstat(fd_, &st) != 0) return Fail(QVWin32ErrorFromErrno(errno));
    *pIdentity = IdentityOf(st);
    return true;
  }

  // Polled rather than waited for in the kernel: a bounded wait, and no
  // deadlock between processes that the kernel would not see (it does not
  // detect them for these locks).
  bool LockContent(bool bExclusive, std::uint32_t ulWaitMs) override {
    if (fd_ < 0) return Fail(ERROR_INVALID_HANDLE);
    if (bExclusive && !canWrite_) return Fail(ERROR_ACCESS_DENIED);
    const auto limite = std::chrono::steady_clock::now() + std::chrono::milliseconds(ulWaitMs);
    for (;;) {
      const int e = SetLock(fd_, bExclusive ? F_WRLCK : F_RDLCK, kContent, false);
      if (e == 0) return true;
      if (e != EAGAIN && e != EACCES) return Fail(QVWin32ErrorFromErrno(e));
      if (std::chrono::steady_clock::now() >= limite) return Fail(ERROR_LOCK_VIOLATION);
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }

  void UnlockContent() override {
    if (fd_ >= 0) SetLock(fd_, F_UNLCK, kContent, false);
  }

  std::uint32_t LastError() const override { return lastError_; }

 private:
  bool Fail(std::uint32_t err) {
    lastError_ = err;
    return false;
  }

  int fd_ = -1;
  std::string path_;
  std::uint64_t position_ = 0;
  // The access asked for; the descriptor itself may allow more.
  bool canRead_ = false;
  bool canWrite_ = false;
  std::uint32_t lastError_ = 0;
};

struct FactorySlot {
  std::mutex mutex;
  QVOsFileFactory factory;
};

FactorySlot& Slot() {
  static FactorySlot slot;
  return slot;
}

}  // namespace

std::unique_ptr<IQVOsFile> QVCreateOsFile() {
  QVOsFileFactory factory;
  {
    std::lock_guard lock(Slot().mutex);
    factory = Slot().factory;
  }
  // Called outside the lock: a factory may build on the real file or
  // install another factory.
  return factory ? factory() : QVCreateRealOsFile();
}

void QVSetOsFileFactory(QVOsFileFactory factory) {
  std::lock_guard lock(Slot().mutex);
  Slot().factory = std::move(factory);
}

void QVSetOsNameHook(QVOsNameHook hook) {
  std::lock_guard lock(NameHook().mutex);
  NameHook().hook = std::move(hook);
}

std::unique_ptr<IQVOsFile> QVCreateRealOsFile() { return std::make_unique<CQVRealOsFile>(); }

namespace {

// The name a case-insensitive lookup compares. Case is folded for ASCII
// letters only: the system's file names are ASCII, and any other byte must
// match exactly.
std::string Folded(std::string name) {
  for (char& c : name)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
  return name;
}

// Listings of directories, for the case resolution of names that are not
// there as spelt: a folder of month files answers many such lookups (most
// months lack most files), and each would read the whole directory. A
// listing is used while the directory's time of change is the one it saw,
// and only once it was taken well after that change (a change within the
// same tick of the file system's clock would not move the time). At most
// kMaxListings directories are kept; the cache is emptied beyond that.
class CaseListings {
 public:
  // The entry matching name without regard to case (the first in byte
  // order), or "" when none does or the directory cannot be read.
  std::string Find(const std::string& directory, const std::string& name) {
    struct stat st {};
    if (::stat(directory.c_str(), &st) != 0) return {};
    const std::int64_t changedNs = static_cast<std::int64_t>(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
    std::lock_guard lock(m_mutex);
    auto it = m_listings.find(directory);
    if (it == m_listings.end() || it->second.changedNs != changedNs ||
        it->second.listedNs - changedNs <= kClockMarginNs) {
      Listing listing;
      // Before the listing: a change during it leaves a newer time.
      listing.listedNs = std::chrono::duration_cast<std::chrono::nanoseconds>(
                             std::chrono::system_clock::now().time_since_epoch())
                             .count();
      listing.changedNs = changedNs;
      DIR* dir = ::opendir(directory.c_str());
      if (dir == nullptr) return {};
      while (const dirent* entry = ::readdir(dir)) {
        std::string& best = listing.byFolded[Folded(entry->d_name)];
        if (best.empty() || std::strcmp(entry->d_name, best.c_str()) < 0) best = entry->d_name;
      }
      ::closedir(dir);
      if (m_listings.size() >= kMaxListings) m_listings.clear();
      it = m_listings.insert_or_assign(directory, std::move(listing)).first;
    }
    const auto found = it->second.byFolded.find(Folded(name));
    return found != it->second.byFolded.end() ? found->second : std::string();
  }

 private:
  static constexpr std::size_t kMaxListings = 64;
  static constexpr std::int64_t kClockMarginNs = 2'000'000'000;
  struct Listing {
    std::int64_t changedNs = 0;
    std::int64_t listedNs = 0;
    std::unordered_map<std::string, std::string> byFolded;
  };
  std::mutex m_mutex;
  std::unordered_map<std::string, Listing> m_listings;
};

CaseListings& Listings() {
  static CaseListings listings;
  return listings;
}

}  // namespace

std::string QVResolvePathCase(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  const std::size_t nameStart = slash == std::string::npos ? 0 : slash + 1;
  const std::string name = path.substr(nameStart);
  if (name.empty() || name == "." || name == "..") return path;
  struct stat st {};
  if (::lstat(path.c_str(), &st) == 0) return path;  // the exact name wins
  const std::string best = Listings().Find(DirectoryOf(path), name);
  return best.empty() ? path : path.substr(0, nameStart) + best;
}

bool QVFileExists(const std::string& path) {
  struct stat st {};
  return ::stat(QVResolvePathCase(path).c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

HRESULT QVGetFileIdentity(const std::string& path, QVFileIdentity* pIdentity) {
  *pIdentity = QVFileIdentity{};
  const std::string resolved = QVResolvePathCase(path);
  struct stat st {};
  if (::stat(resolved.c_str(), &st) != 0) {
    const std::uint32_t err = ErrorForPath(errno, resolved);
    return err == ERROR_FILE_NOT_FOUND || err == ERROR_PATH_NOT_FOUND ? S_OK : HRESULT_FROM_WIN32(err);
  }
  if (S_ISREG(st.st_mode)) *pIdentity = IdentityOf(st);
  return S_OK;
}

HRESULT QVGetDirectoryChangeTime(const std::string& dir, std::int64_t* piChangedNs) {
  *piChangedNs = 0;
  struct stat st {};
  if (::stat(dir.empty() ? "." : dir.c_str(), &st) != 0) {
    if (errno == ENOENT) return S_OK;
    return HRESULT_FROM_WIN32(QVWin32ErrorFromErrno(errno));
  }
  if (!S_ISDIR(st.st_mode)) return HRESULT_FROM_WIN32(ERROR_DIRECTORY);
  *piChangedNs = static_cast<std::int64_t>(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
  return S_OK;
}

HRESULT QVDeleteFile(const std::string& path) {
  if (const std::uint32_t err = AskNameHook(path, {}); err != 0) return HRESULT_FROM_WIN32(err);
  const std::string resolved = QVResolvePathCase(path);
  struct stat st {};
  if (::lstat(resolved.c_str(), &st) != 0) return HrForPath(errno, resolved);
  if (S_ISDIR(st.st_mode)) return HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED);
  {
    const CPortaoRemocao portao(resolved);
    if (const std::uint32_t err = MayRemove(resolved, st); err != 0) return HRESULT_FROM_WIN32(err);
    if (::unlink(resolved.c_str()) != 0) return HrForPath(errno, resolved);
  }
  return QVSyncDirectory(DirectoryOf(resolved));
}

HRESULT QVMoveFile(const std::string& from, const std::string& to) {
  if (const std::uint32_t err = AskNameHook(from, to); err != 0) return HRESULT_FROM_WIN32(err);
  const std::string source = QVResolvePathCase(from);
  const std::string target = QVResolvePathCase(to);
  struct stat src {};
  if (::lstat(source.c_str(), &src) != 0) return HrForPath(errno, source);
  if (const std::uint32_t err = CheckNotInUse(source, src); err != 0) return HRESULT_FROM_WIN32(err);
  struct stat dst {};
  const bool targetExists = ::lstat(target.c_str(), &dst) == 0;
  // The same file under another spelling (or another case) is not replaced:
  // renaming onto itself changes nothing, and the case is fixed below.
  const bool sameFile = targetExists && dst.st_dev == src.st_dev && dst.st_ino == src.st_ino;
  {
    // A file the rename replaces loses its name: hold its gate as a deletion does.
    std::optional<CPortaoRemocao> portao;
    if (targetExists && !sameFile) {
      portao.emplace(target);
      if (const std::uint32_t err = MayRemove(target, dst); err != 0) return HRESULT_FROM_WIN32(err);
    }
    if (::rename(source.c_str(), target.c_str()) != 0) {
      // The source exists, so a missing entry is the destination's directory.
      return HRESULT_FROM_WIN32(errno == ENOENT ? ERROR_PATH_NOT_FOUND : QVWin32ErrorFromErrno(errno));
    }
  }
  // The destination named an existing entry in another case (or is the
  // source itself): the file takes the case asked for.
  if (target != to && ::rename(target.c_str(), to.c_str()) != 0) return HrForPath(errno, to);

  const std::string toDir = DirectoryOf(to);
  const std::string fromDir = DirectoryOf(source);
  HRESULT hr = QVSyncDirectory(toDir);
  if (SUCCEEDED(hr) && fromDir != toDir) hr = QVSyncDirectory(fromDir);
  return hr;
}

HRESULT QVSetReadOnly(const std::string& path, bool readOnly) {
  const std::string resolved = QVResolvePathCase(path);
  struct stat st {};
  if (::stat(resolved.c_str(), &st) != 0) return HrForPath(errno, resolved);
  mode_t mode = st.st_mode & 07777;
  if (readOnly) {
    mode &= ~mode_t{0222};
  } else if ((mode & 0222) == 0) {
    mode |= 0200;  // the owner writes again; other write bits stay off
  }
  if (mode == (st.st_mode & 07777)) return S_OK;
  if (::chmod(resolved.c_str(), mode) != 0) return HrForPath(errno, resolved);
  return S_OK;
}

bool QVIsReadOnly(const std::string& path) {
  struct stat st {};
  return ::stat(QVResolvePathCase(path).c_str(), &st) == 0 && (st.st_mode & 0222) == 0;
}

HRESULT QVListDirectory(const std::string& dir, std::vector<std::string>* pNames) {
  if (pNames == nullptr) return E_POINTER;
  pNames->clear();
  DIR* d = ::opendir(dir.empty() ? "." : dir.c_str());
  if (d == nullptr) {
    return HRESULT_FROM_WIN32(errno == ENOENT ? ERROR_PATH_NOT_FOUND : QVWin32ErrorFromErrno(errno));
  }
  int e = 0;
  for (;;) {
    errno = 0;
    const dirent* entry = ::readdir(d);
    if (entry == nullptr) {
      e = errno;
      break;
    }
    bool isFile = entry->d_type == DT_REG;
    // Some file systems do not fill the type in; a link counts as what it names.
    if (entry->d_type == DT_UNKNOWN || entry->d_type == DT_LNK) {
      struct stat st {};
      isFile = ::fstatat(::dirfd(d), entry->d_name, &st, 0) == 0 && S_ISREG(st.st_mode);
    }
    if (isFile) pNames->emplace_back(entry->d_name);
  }
  ::closedir(d);
  if (e != 0) {
    pNames->clear();
    return HRESULT_FROM_WIN32(QVWin32ErrorFromErrno(e));
  }
  std::sort(pNames->begin(), pNames->end());
  return S_OK;
}

HRESULT QVCreateDirectories(const std::string& dir) {
  if (dir.empty()) return HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND);
  std::size_t pos = 0;
  while (pos <= dir.size()) {
    std::size_t end = dir.find('/', pos);
    if (end == std::string::npos) end = dir.size();
    const std::string current = dir.substr(0, end);
    pos = end + 1;
    if (end == 0 || dir[end - 1] == '/') continue;  // the root, or a doubled slash
    if (::mkdir(current.c_str(), kDirectoryMode) == 0) {
      // The new entry is durable only once its parent is synced.
      if (const HRESULT hr = QVSyncDirectory(DirectoryOf(current)); FAILED(hr)) return hr;
      continue;
    }
    if (errno != EEXIST) {
      return HRESULT_FROM_WIN32(errno == ENOENT ? ERROR_PATH_NOT_FOUND : QVWin32ErrorFromErrno(errno));
    }
    struct stat st {};
    if (::stat(current.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
      // A file where a directory should be: the whole path is taken when it
      // is the last component, unreachable otherwise.
      return HRESULT_FROM_WIN32(end == dir.size() ? ERROR_ALREADY_EXISTS : ERROR_PATH_NOT_FOUND);
    }
  }
  return S_OK;
}

HRESULT QVSyncDirectory(const std::string& dir) {
  const int fd = OpenRetrying(dir.empty() ? "." : dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return HRESULT_FROM_WIN32(errno == ENOENT ? ERROR_PATH_NOT_FOUND : QVWin32ErrorFromErrno(errno));
  int e = 0;
  while (::fsync(fd) != 0) {
    if (errno == EINTR) continue;
    // File systems that cannot sync a directory say EINVAL: nothing more
    // can be done there.
    if (errno != EINVAL) e = errno;
    break;
  }
  ::close(fd);
  return e == 0 ? S_OK : HRESULT_FROM_WIN32(QVWin32ErrorFromErrno(e));
}

HRESULT QVDropFileCache(const std::string& path) {
  const std::string resolved = QVResolvePathCase(path);
  const int fd = OpenRetrying(resolved.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return HrForPath(errno, resolved);
  // posix_fadvise answers its error instead of setting errno.
  const int e = ::posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED);
  ::close(fd);
  return e == 0 ? S_OK : HRESULT_FROM_WIN32(QVWin32ErrorFromErrno(e));
}

std::uint32_t QVWin32ErrorFromErrno(int e) {
  switch (e) {
    case 0: return ERROR_SUCCESS;
    case ENOENT: return ERROR_FILE_NOT_FOUND;
    case ENOTDIR: return ERROR_PATH_NOT_FOUND;
    case EACCES:
    case EPERM:
    case EISDIR: return ERROR_ACCESS_DENIED;
    case EMFILE:
    case ENFILE: return ERROR_TOO_MANY_OPEN_FILES;
    case ENOSPC:
    case EDQUOT:
    case EFBIG: return ERROR_DISK_FULL;
    case EROFS: return ERROR_WRITE_PROTECT;
    case ENAMETOOLONG: return ERROR_FILENAME_EXCED_RANGE;
    case EEXIST: return ERROR_FILE_EXISTS;
    case EINVAL: return ERROR_INVALID_PARAMETER;
    case EBADF: return ERROR_INVALID_HANDLE;
    case ENOTEMPTY: return ERROR_DIR_NOT_EMPTY;
    case EXDEV: return ERROR_NOT_SAME_DEVICE;
    case ENOMEM: return ERROR_NOT_ENOUGH_MEMORY;
    // EAGAIN is what a non-waiting lock meets when the range is held.
#if EWOULDBLOCK != EAGAIN
    case EWOULDBLOCK:
#endif
    case EAGAIN: return ERROR_LOCK_VIOLATION;
    case EIO:
    default: return ERROR_GEN_FAILURE;
  }
}
