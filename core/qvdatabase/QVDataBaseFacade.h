// CQVDataBaseFacade<DB, Base>: what a server class derives from to work on a
// company's database of type DB: it ties the database to the session's
// identity (Base, the session base) and brings the company's files up to
// date before they are first used.
//
// QVDataBaseInicializa, in order:
//  1. no company: E_QVCR_INICIALIZACAO_QVDATABASE_SEM_EMPRESA, nothing opened;
//  2. ExecutaConversaoInterno: the derived class's ExecutaConversao (the
//     migration), at most once per company and process, under one
//     process-wide lock, and never once the database is open;
//  3. join the process's container: the company's database, opened by its
//     first user and shared by all of them.
// OnFinaliza leaves the container (the last user closes the database).
#pragma once

#include <mutex>

#include "core/qvdatabase/QVContainerFacade.h"
#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVLog.h"

// The lock of every conversion of the process.
std::mutex& QVMutexConversao();

template <class DB, class Base>
class CQVDataBaseFacade : public Base {
 public:
  ~CQVDataBaseFacade() override {
    if (m_pDataBase != nullptr) QV_LOGA(m_ContainerFacade.Finaliza(this->GetEmpresa(), m_pDataBase));
  }

  [[nodiscard]] HRESULT QVDataBaseInicializa() {
    if (this->GetEmpresa().empty()) QV_RETURN(E_QVCR_INICIALIZACAO_QVDATABASE_SEM_EMPRESA);
    QV_CHECK(ExecutaConversaoInterno());
    QV_CHECK(m_ContainerFacade.Inicializa(this->GetEmpresa(), this->GetUsuario(), this->GetNumeroSessao(), m_pDataBase,
                                          this->GetModulo()));
    return S_OK;
  }

  // Double-checked: the first object of a company converts, the others find
  // the database open (or the conversion done) and go on.
  [[nodiscard]] HRESULT ExecutaConversaoInterno() {
    if (JaPronto()) return S_OK;
    std::lock_guard lock(QVMutexConversao());
    if (JaPronto()) return S_OK;
    QV_CHECK(ExecutaConversao());
    m_ContainerFacade.MarcaConvertido(this->GetEmpresa(), this->GetModulo());
    return S_OK;
  }

  DB* GetDataBase() const { return m_pDataBase; }

 protected:
  // The migration of the company's files; nothing to do by default.
  [[nodiscard]] virtual HRESULT ExecutaConversao() { return S_OK; }

  HRESULT OnFinaliza() override {
    HRESULT hr = S_OK;
    if (m_pDataBase != nullptr) hr = QV_LOGA(m_ContainerFacade.Finaliza(this->GetEmpresa(), m_pDataBase));
    const HRESULT hrBase = QV_LOGA(Base::OnFinaliza());
    return FAILED(hr) ? hr : hrBase;
  }

  DB* m_pDataBase = nullptr;
  CQVContainerFacade<DB>& m_ContainerFacade = CQVContainerFacade<DB>::Instancia();

 private:
  bool JaPronto() const {
    return m_ContainerFacade.EstaAberto(this->GetEmpresa(), this->GetModulo()) ||
           m_ContainerFacade.FoiConvertido(this->GetEmpresa(), this->GetModulo());
  }
};
