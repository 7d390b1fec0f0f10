#include "df/qvlibex/QVTranslate.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <mutex>
#include <new>

#include "df/qvlibex/QVException.h"

HRESULT QVTranslateThrownExceptionToHresult() {
  try {
    throw;
  } catch (const _com_error& e) {
    return e.Error();
  } catch (const CQVExceptionEx& e) {
    return e.m_hr;
  } catch (CQVException* e) {
    // The OS error goes into the interface facility on purpose (not
    // HRESULT_FROM_WIN32): that is how the suite reads these numbers.
    return e->m_lErroSO != 0 ? QVHr(static_cast<std::uint32_t>(e->m_lErroSO) | 0x80040000u)
                             : E_QVDF_EXCECAO_CQVEXCEPTION;
  } catch (CFileException* e) {
    return HRESULT_FROM_WIN32(e->m_lOsError);
  } catch (CMemoryException*) {
    return E_QVDF_EXCECAO_CMEMORYEXCEPTION;
  } catch (CInvalidArgException*) {
    return E_QVDF_EXCECAO_CINVALIDARGEXCEPTION;
  } catch (CException*) {
    return E_QVDF_EXCECAO_CEXCEPTION;
  } catch (HRESULT valor) {
    // A thrown status: the 32-bit "long" of the platform the clients were
    // written for.
    return valor;
  } catch (long valor) {
    // Code that throws a status as a long here gets a 64-bit one: a status
    // spelt negative (the value sign-extended) or unsigned ("0x8004xxxxL")
    // is that status; anything wider is no status at all.
    if (valor >= INT32_MIN && valor <= static_cast<long>(UINT32_MAX)) return QVHr(static_cast<std::uint32_t>(valor));
    return E_QVDF_EXCECAO_DESCONHECIDA;
  } catch (const std::bad_alloc&) {
    return E_QVDF_EXCECAO_BAD_ALLOC;
  } catch (const std::exception&) {
    return E_QVDF_EXCECAO_STD_EXCEPTION;
  } catch (...) {
    return E_QVDF_EXCECAO_DESCONHECIDA;
  }
}

void QVLiberaExcecaoLancada() {
  try {
    throw;
  } catch (CException* e) {
    if (e != nullptr) e->Delete();
  } catch (...) {
  }
}

namespace {

struct ParSEH {
  std::uint32_t sistema;
  std::uint32_t status;
};

constexpr ParSEH kSEH[] = {
    {0xC0000005u, 0x8004EAC5u}, {0xC000008Cu, 0x8004EAC6u}, {0x80000003u, 0x8004EAC7u},
    {0x80000002u, 0x8004EAC8u}, {0xC000008Du, 0x8004EAC9u}, {0xC000008Eu, 0x8004EACAu},
    {0xC000008Fu, 0x8004EACBu}, {0xC0000090u, 0x8004EACCu}, {0xC0000091u, 0x8004EACDu},
    {0xC0000092u, 0x8004EACEu}, {0xC0000093u, 0x8004EACFu}, {0x80000001u, 0x8004EAD0u},
    {0xC000001Du, 0x8004EAD1u}, {0xC0000006u, 0x8004EAD2u}, {0xC0000094u, 0x8004EAD3u},
    {0xC0000095u, 0x8004EAD4u}, {0xC0000026u, 0x8004EAD5u}, {0xC0000008u, 0x8004EAD6u},
    {0xC0000025u, 0x8004EAD7u}, {0xC0000096u, 0x8004EAD8u}, {0x80000004u, 0x8004EAD9u},
    {0xC00000FDu, 0x8004EADAu}, {0x80000029u, 0x8004EADBu},
};

// The filter accepts the table's codes except 0x80000029, which is mapped
// but never accepted (it is the system's own unwinding signal).
bool Aceita(std::uint32_t codigo) { return codigo != 0x80000029u; }

std::mutex g_mutexSEH;
std::uint32_t g_ultimoCodigo = 0;
std::string g_ultimaPilha;

}  // namespace

bool QVFiltroSEHAceita(std::uint32_t codigo) {
  for (const ParSEH& p : kSEH)
    if (p.sistema == codigo) return Aceita(codigo);
  return false;
}

HRESULT QVHresultDeSEH(std::uint32_t codigo) {
  for (const ParSEH& p : kSEH)
    if (p.sistema == codigo) return QVHr(p.status);
  return E_QVDF_SEH_OUTRO;
}

std::uint32_t QVUltimoCodigoSEH() {
  std::lock_guard lock(g_mutexSEH);
  return g_ultimoCodigo;
}

std::string QVUltimaPilhaSEH() {
  std::lock_guard lock(g_mutexSEH);
  return g_ultimaPilha;
}

HRESULT QVRegistraFalhaSEH(const QVSehFault& falha) {
  // A code the filter does not accept would have gone on to the system and
  // ended the process; the guard here only reports codes the filter knows.
  if (!QVFiltroSEHAceita(falha.codigo)) std::abort();
  {
    std::lock_guard lock(g_mutexSEH);
    g_ultimoCodigo = falha.codigo;
    g_ultimaPilha = falha.pilha;
  }
  return QVHresultDeSEH(falha.codigo);
}

HRESULT QVHresultDeErrno(int e) {
  std::uint32_t base = 0;
  if (e >= 1 && e <= 14)
    base = 0x8004EADCu + static_cast<std::uint32_t>(e - 1);
  else if (e >= 16 && e <= 25)
    base = 0x8004EAEAu + static_cast<std::uint32_t>(e - 16);
  else if (e >= 27 && e <= 34)
    base = 0x8004EAF4u + static_cast<std::uint32_t>(e - 27);
  else if (e == 36)
    base = 0x8004EAFCu;
  else if (e >= 38 && e <= 42)
    base = 0x8004EAFDu + static_cast<std::uint32_t>(e - 38);
  else if (e == 80)
    base = 0x8004EB02u;
  else
    return E_QVDF_EXCECAO_PADRAO;
  return QVHr(base);
}

int QVErrnoRuntimeDeErrno(int e) {
  // 1..14, 16..25 and 27..34 share their numbers; the rest moved.
  if ((e >= 1 && e <= 14) || (e >= 16 && e <= 25) || (e >= 27 && e <= 34)) return e;
  switch (e) {
    case EDEADLK: return 36;
    case ENAMETOOLONG: return 38;
    case ENOLCK: return 39;
    case ENOSYS: return 40;
    case ENOTEMPTY: return 41;
    case EILSEQ: return 42;
    default: return 0;
  }
}
