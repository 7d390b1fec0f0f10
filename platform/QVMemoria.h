// Large memory blocks: the record files hold their whole content in one
// block. Blocks of 2 MB and more are mapped directly and backed by huge
// pages where the system offers them, which makes first touching a 100 MB
// file's records several times cheaper than with ordinary pages.
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

  unsigned char* get() const { return static_cast<unsigned char*>(m_p); }
  std::size_t size() const { return m_n; }
  explicit operator bool() const { return m_p != nullptr; }

 private:
  void Libera();
  void* m_p = nullptr;
  std::size_t m_n = 0;
  bool m_bMapeado = false;
};
