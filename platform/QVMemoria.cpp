#include "platform/QVMemoria.h"

#include <sys/mman.h>

#include <cstdlib>
#include <cstring>

namespace {
constexpr std::size_t kHugePage = 2u << 20;

std::size_t EmPaginasGrandes(std::size_t n) { return (n + kHugePage - 1) / kHugePage * kHugePage; }
}  // namespace

CQVBloco::CQVBloco(std::size_t n) {
  if (n >= kHugePage) {
    const std::size_t tamanho = EmPaginasGrandes(n);
    void* p = mmap(nullptr, tamanho, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED) return;
    madvise(p, tamanho, MADV_HUGEPAGE);  // a hint: refused is fine
    m_p = p;
    m_n = tamanho;
    m_bMapeado = true;
    return;
  }
  m_p = std::malloc(n == 0 ? 1 : n);
  m_n = m_p != nullptr ? n : 0;
}

CQVBloco::~CQVBloco() { Libera(); }

CQVBloco& CQVBloco::operator=(CQVBloco&& o) noexcept {
  if (this != &o) {
    Libera();
    m_p = std::exchange(o.m_p, nullptr);
    m_n = std::exchange(o.m_n, 0);
    m_bMapeado = o.m_bMapeado;
  }
  return *this;
}

bool CQVBloco::Cresce(std::size_t n) {
  if (n <= m_n && m_p != nullptr) return true;
  if (m_p == nullptr) {
    CQVBloco novo(n);
    if (!novo) return false;
    *this = std::move(novo);
    return true;
  }
  if (m_bMapeado) {
    const std::size_t tamanho = EmPaginasGrandes(n);
    void* p = mremap(m_p, m_n, tamanho, MREMAP_MAYMOVE);
    if (p == MAP_FAILED) return false;
    madvise(p, tamanho, MADV_HUGEPAGE);
    m_p = p;
    m_n = tamanho;
    return true;
  }
  if (n < kHugePage) {
    void* p = std::realloc(m_p, n);
    if (p == nullptr) return false;
    m_p = p;
    m_n = n;
    return true;
  }
  CQVBloco novo(n);
  if (!novo) return false;
  std::memcpy(novo.get(), m_p, m_n);
  *this = std::move(novo);
  return true;
}

void CQVBloco::Libera() {
  if (m_p == nullptr) return;
  if (m_bMapeado)
    munmap(m_p, m_n);
  else
    std::free(m_p);
  m_p = nullptr;
  m_n = 0;
}
