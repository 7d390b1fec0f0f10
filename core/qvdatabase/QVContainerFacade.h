// The process's open databases of one kind (one DB type): one database
// object per company and module, shared by every client object of that
// company in the process.
//
// Life cycle of an entry: the first Inicializa of a company creates the
// database and opens every file of it; later ones only count a user;
// Finaliza uncounts one, and the last user's Finaliza finalises the database
// (every file flushed, its header written, closed) and forgets it. The
// container also remembers which companies' data were converted in this
// process, so that a conversion runs at most once per company and process.
// All of it under one mutex: joining and leaving are rare and short next to
// the opening itself.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "df/qvlibex/QVLog.h"
#include "df/qvlibex/QVProfilerEmpresa.h"
#include "platform/QVCodePage.h"
#include "platform/QVSystemInfo.h"

template <class DB>
class CQVContainerFacade {
 public:
  static CQVContainerFacade& Instancia() {
    static CQVContainerFacade container;
    return container;
  }

  // Joins the company's database, opening it for the first user, and hands
  // it out in pDataBase.
  [[nodiscard]] HRESULT Inicializa(const std::string& sEmpresa, std::uint16_t usUsuario, std::uint32_t ulNumeroSessao,
                                   DB*& pDataBase, std::uint32_t eModulo) {
    std::lock_guard lock(m_mutex);
    EsqueceHerdados();
    Entrada& e = m_Bancos[Chave(sEmpresa, eModulo)];
    if (!e.pDataBase) {
      auto pNovo = std::make_unique<DB>();
      pNovo->SetModulo(eModulo);
      const CQVProfilerEmpresa identidade(sEmpresa, usUsuario, ulNumeroSessao);
      const HRESULT hr = QV_LOGA(pNovo->Inicializa(&identidade));
      if (FAILED(hr)) {
        m_Bancos.erase(Chave(sEmpresa, eModulo));
        pDataBase = nullptr;
        return hr;
      }
      e.pDataBase = std::move(pNovo);
    }
    ++e.iUsuarios;
    pDataBase = e.pDataBase.get();
    return S_OK;
  }

  // Leaves the company's database; the last user finalises it. pDataBase is
  // cleared.
  [[nodiscard]] HRESULT Finaliza(const std::string& /*sEmpresa*/, DB*& pDataBase) {
    std::unique_ptr<DB> pFechar;
    {
      std::lock_guard lock(m_mutex);
      for (auto it = m_Bancos.begin(); it != m_Bancos.end(); ++it) {
        if (it->second.pDataBase.get() != pDataBase) continue;
        if (--it->second.iUsuarios == 0) {
          pFechar = std::move(it->second.pDataBase);
          m_Bancos.erase(it);
        }
        break;
      }
    }
    pDataBase = nullptr;
    // Finalised outside the lock: flushing a company's files must not hold
    // up the other companies.
    if (pFechar) QV_CHECK(pFechar->Finaliza());
    return S_OK;
  }

  bool EstaAberto(const std::string& sEmpresa, std::uint32_t eModulo) const {
    std::lock_guard lock(m_mutex);
    return m_Bancos.count(Chave(sEmpresa, eModulo)) != 0;
  }
  int GetQtdUsuarios(const std::string& sEmpresa, std::uint32_t eModulo) const {
    std::lock_guard lock(m_mutex);
    const auto it = m_Bancos.find(Chave(sEmpresa, eModulo));
    return it != m_Bancos.end() ? it->second.iUsuarios : 0;
  }
  bool FoiConvertido(const std::string& sEmpresa, std::uint32_t eModulo) const {
    std::lock_guard lock(m_mutex);
    return m_Convertidos.count(Chave(sEmpresa, eModulo)) != 0;
  }
  void MarcaConvertido(const std::string& sEmpresa, std::uint32_t eModulo) {
    std::lock_guard lock(m_mutex);
    m_Convertidos.insert(Chave(sEmpresa, eModulo));
  }

 private:
  struct Entrada {
    std::unique_ptr<DB> pDataBase;
    int iUsuarios = 0;
  };

  // Companies name folders of a file system that ignores case: "Ação" and
  // "AÇÃO" are one company, one folder, one database object (the same fold
  // as the session library's resolution of the company's folder).
  static std::string Chave(const std::string& sEmpresa, std::uint32_t eModulo) {
    return QVMaiusculasCodePage(sEmpresa) + "|" + std::to_string(eModulo);
  }

  // A child made by fork inherits its parent's databases, whose open files
  // are the parent's open descriptions (and sharing locks): it must neither
  // write through them nor flush or close them as its own. They are left
  // to the parent, never finalised here, and the child opens its own.
  void EsqueceHerdados() {
    const std::uint32_t uiProcesso = QVCurrentProcessId();
    if (uiProcesso == m_uiProcesso) return;
    for (auto& it : m_Bancos) static_cast<void>(it.second.pDataBase.release());
    m_Bancos.clear();
    m_uiProcesso = uiProcesso;
  }

  mutable std::mutex m_mutex;
  std::uint32_t m_uiProcesso = QVCurrentProcessId();
  std::map<std::string, Entrada> m_Bancos;
  std::set<std::string> m_Convertidos;
};
