// Large memory blocks: the record files hold their whole content in one
// block. Blocks of 2 MB and more are mapped directly and backed by huge
// pages where the system offers them, which makes first touching a 100 MB
// file's records several times cheaper than with ordinary pages. A mapped
// block costs memory only where it has been written: room reserved beyond
// the content is address space.
#pragma once

#include <cstddef>
#include <utility>

class CQVBloco {
 public:
  CQVBloco() = default;
  // A block of at least n bytes (contents undefined); empty when memory runs out.
  explicit CQVBloco(std::size_t n);
  ~CQVBloco();
  CQVBloco(CQVBloco&& o) noexcept
      : m_p(std::exchange(o.m_p, nullptr)), m_n(std::exchange(o.m_n, 0)), m_bMapeado(o.m_bMapeado) {}
  CQVBloco& operator=(CQVBloco&& o) noexcept;
  CQVBloco(const CQVBloco&) = delete;
  CQVBloco& operator=(const CQVBloco&) = delete;

  // Makes the block at least n bytes long, keeping its bytes. A mapped block
  // grows where it is or is moved by the kernel's page tables: its bytes are
  // never copied, so a 512 MB block grows without a second 512 MB. Only a
  // small block that becomes large is copied (less than 2 MB). On failure the
  // block is unchanged.
  [[nodiscard]] bool Cresce(std::size_t n);

  unsigned char* get() const { return static_cast<unsigned char*>(m_p); }
  std::size_t size() const { return m_n; }
  explicit operator bool() const { return m_p != nullptr; }

 private:
  void Libera();
  void* m_p = nullptr;
  std::size_t m_n = 0;
  bool m_bMapeado = false;
};
