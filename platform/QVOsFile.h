// Files with the semantics the data depends on.
//
//  - Open flags are the platform's flag sets (below): access, sharing,
//    creation. The record store's open modes are such sets.
//  - Sharing is enforced between processes, and between two opens in one
//    process, as the platform does: an open is refused with
//    ERROR_SHARING_VIOLATION when its access is denied by an open handle's
//    sharing, or when its own sharing denies an open handle's access. With
//    the modes the system uses: a read-write open that denies writing is
//    refused while another such open exists; a read-only open that denies
//    nothing is refused by no one. Emulated with open-file-description
//    locks on reserved bytes far beyond any data, so they never touch file
//    content and vanish when the handle is closed or its process dies.
//  - Names resolve in their directory without regard to case: "GEATPRJ.dat"
//    opens "geatprj.DAT" when that is what the directory holds.
//  - The read-only attribute is the absence of every write permission bit;
//    opening such a file for writing is refused with ERROR_ACCESS_DENIED,
//    whoever the process runs as.
//  - Flush reaches the disk (fdatasync); a rename or a delete is made
//    durable by syncing the directory. A file an open creates is durable in
//    its directory once the caller syncs it (QVSyncDirectory): data files
//    need that, lock files do not.
//  - Files are created readable and writable by their owner and readable by
//    the owner's group (0640); directories 0750. Company data is nobody
//    else's to read.
//  - Besides the sharing, each file has one content lock, shared or
//    exclusive, on a reserved byte of its own (LockContent): writers hold it
//    exclusively while they change data and header, readers of a file that
//    another process may be writing hold it shared while they read. It does
//    not count as having the file open (a rename or delete ignores it).
// Failures report a Win32 error number (LastError), as the platform's file
// functions do; 0 means none.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/QVHResult.h"

// What tells one state of a file from another without reading it: which
// file (device and inode: a rename that replaces it changes them), its length
// and the time of its last change of content (nanoseconds).
struct QVFileIdentity {
  bool bExists = false;
  std::uint64_t uiDevice = 0;
  std::uint64_t uiInode = 0;
  std::uint64_t uiLength = 0;
  std::int64_t iModifiedNs = 0;
  bool operator==(const QVFileIdentity&) const = default;
};

// Open flags (combine one access, one sharing and the creation flags).
inline constexpr std::uint32_t QVFILE_MODE_READ = 0x0000;
inline constexpr std::uint32_t QVFILE_MODE_WRITE = 0x0001;
inline constexpr std::uint32_t QVFILE_MODE_READWRITE = 0x0002;
inline constexpr std::uint32_t QVFILE_SHARE_EXCLUSIVE = 0x0010;  // deny reading and writing
inline constexpr std::uint32_t QVFILE_SHARE_DENY_WRITE = 0x0020;
inline constexpr std::uint32_t QVFILE_SHARE_DENY_READ = 0x0030;
inline constexpr std::uint32_t QVFILE_SHARE_DENY_NONE = 0x0040;
inline constexpr std::uint32_t QVFILE_MODE_CREATE = 0x1000;  // create when absent; truncate unless NO_TRUNCATE
inline constexpr std::uint32_t QVFILE_MODE_NO_TRUNCATE = 0x2000;

// One open file. Not thread-safe: one caller at a time.
class IQVOsFile {
 public:
  virtual ~IQVOsFile() = default;

  // Opens path (its last component resolved without regard to case) with
  // the flags above. A file that does not exist without MODE_CREATE fails
  // with ERROR_FILE_NOT_FOUND (ERROR_PATH_NOT_FOUND when its directory is
  // missing). Truncation, when asked for, happens only after the sharing
  // check passed. Opening an open object closes it first.
  virtual bool Open(const std::string& path, std::uint32_t flags) = 0;
  virtual void Close() = 0;
  virtual bool IsOpen() const = 0;
  // The path actually opened (with the case found on disk).
  virtual const std::string& Path() const = 0;

  virtual bool Seek(std::uint64_t offset) = 0;
  virtual bool SeekToEnd(std::uint64_t* pNewOffset) = 0;
  virtual std::uint64_t Position() const = 0;
  // Reads up to n bytes at the current position; *pRead gets how many (0 at
  // the end of the file).
  virtual bool Read(void* buffer, std::size_t n, std::size_t* pRead) = 0;
  // Writes all n bytes at the current position or fails.
  virtual bool Write(const void* buffer, std::size_t n) = 0;
  virtual bool GetLength(std::uint64_t* pLength) = 0;
  virtual bool SetLength(std::uint64_t length) = 0;
  // Data and length reach the disk.
  virtual bool Flush() = 0;
  // The identity of the open file.
  virtual bool GetIdentity(QVFileIdentity* pIdentity) = 0;
  // Takes the content lock, waiting up to ulWaitMs while another handle (of
  // any process, or another handle of this one) holds it in a conflicting
  // way; then fails with ERROR_LOCK_VIOLATION. Exclusive needs write access.
  // Taking it again converts it. Closing the file releases it.
  virtual bool LockContent(bool bExclusive, std::uint32_t ulWaitMs) = 0;
  virtual void UnlockContent() = 0;

  // The Win32 error number of the last failed operation.
  virtual std::uint32_t LastError() const = 0;
};

// A new file object, from the factory in use (the real one unless a test
// installed a double).
std::unique_ptr<IQVOsFile> QVCreateOsFile();
using QVOsFileFactory = std::function<std::unique_ptr<IQVOsFile>()>;
// Installs a factory (tests: a double that fails chosen operations); an
// empty function returns to the real files.
void QVSetOsFileFactory(QVOsFileFactory factory);
// The real implementation, for doubles that wrap it.
std::unique_ptr<IQVOsFile> QVCreateRealOsFile();

// ---- operations on names ---------------------------------------------------
// Each answers S_OK or HRESULT_FROM_WIN32 of the failure.

// The path with its last component replaced by the directory entry that
// matches it without regard to case (the exact name wins; among several
// case-insensitive matches the first in byte order). Unchanged when nothing
// matches or the directory cannot be read.
std::string QVResolvePathCase(const std::string& path);
// Whether a file (not a directory) exists at the path, resolved as above.
bool QVFileExists(const std::string& path);
// The identity of the file at the path (bExists false when there is none).
[[nodiscard]] HRESULT QVGetFileIdentity(const std::string& path, QVFileIdentity* pIdentity);
// When a directory's entries last changed (a file created, renamed or
// deleted in it), in nanoseconds of the wall clock (as the file system
// records it, to its own granularity); 0 when the directory does not exist.
[[nodiscard]] HRESULT QVGetDirectoryChangeTime(const std::string& dir, std::int64_t* piChangedNs);
[[nodiscard]] HRESULT QVDeleteFile(const std::string& path);
// Renames, replacing an existing destination; both names resolved as above
// (a destination that differs only in case is the same file: the rename
// fixes its case). The directory is synced afterwards.
[[nodiscard]] HRESULT QVMoveFile(const std::string& from, const std::string& to);
[[nodiscard]] HRESULT QVSetReadOnly(const std::string& path, bool readOnly);
bool QVIsReadOnly(const std::string& path);
// Entries (files only) of a directory, names as on disk, in byte order.
[[nodiscard]] HRESULT QVListDirectory(const std::string& dir, std::vector<std::string>* pNames);
[[nodiscard]] HRESULT QVCreateDirectories(const std::string& dir);
// Makes a directory's entries (creations, renames, deletions) durable.
[[nodiscard]] HRESULT QVSyncDirectory(const std::string& dir);
// Asks the system to forget the cached pages of a file (its name resolved
// as above), so that the next read comes from the disk. Only pages already
// written back are dropped: flush first. Nothing is read or changed.
[[nodiscard]] HRESULT QVDropFileCache(const std::string& path);

// Tests: a function asked before every rename (to not empty) and every
// deletion (to empty) with the names given; a non-zero Win32 error it returns
// fails the operation with that error, before anything changed. An empty
// function removes it.
using QVOsNameHook = std::function<std::uint32_t(const std::string& from, const std::string& to)>;
void QVSetOsNameHook(QVOsNameHook hook);

// The Win32 error number of an errno value.
std::uint32_t QVWin32ErrorFromErrno(int e);
