// CQVFileSingleReg<T>: a file that holds exactly one record (version
// records, settings). On disk: the header block, then sizeof(T) bytes.
// A file that does not exist reads as a record of zero bytes. Reads and
// writes first read the file again when another process changed it
// (QVFileBase.h, invariant 5).
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <type_traits>
#include <vector>

#include "core/qvdatabase/QVFile.h"
#include "core/qvdatabase/QVFileBase.h"

// The record-size-only core, shared by every record type.
class CQVFileSingleRegBase : public CQVFileBase {
 public:
  CQVFileSingleRegBase(std::string sNomeArquivo, std::uint32_t eModulo, std::size_t tamRegistro,
                       std::string sNomeEstrutura);
  ~CQVFileSingleRegBase() override;

  // 1 when the file exists, else 0.
  QVUInt GetQtdRegistros() override;
  // Under this file's lock: no read of another thread meets it half closed.
  [[nodiscard]] HRESULT LiberaGravacao() override {
    std::lock_guard lock(m_mutex);
    return CQVFileBase::LiberaGravacao();
  }
  std::string GetNomeEstrutura() const override { return m_sNomeEstrutura; }

  [[nodiscard]] HRESULT LeRegistro(void* pRegistro);
  // Stores the record and writes it after the header (creating the file).
  [[nodiscard]] HRESULT GravaRegistro(const void* pRegistro);

 protected:
  HRESULT OnInicializa() override;
  HRESULT LeConteudo(bool bExiste, QVUInt uiTamanho) override;
  std::string NomeClasseLog() const override { return "CQVFileSingleReg<" + m_sNomeEstrutura + ">"; }
  const char* FonteLog() const override { return "core/qvdatabase/QVFileSingleReg"; }

 private:
  // Guards the record: a read may read the file again.
  std::recursive_mutex m_mutex;
  const std::string m_sNomeEstrutura;
  std::vector<unsigned char> m_Registro;
  bool m_bArquivoExiste = false;
};

template <class T>
class CQVFileSingleReg : public CQVFileSingleRegBase {
  static_assert(std::is_trivially_copyable_v<T> && std::is_standard_layout_v<T>,
                "records are plain bytes on disk");

 public:
  CQVFileSingleReg(std::string sNomeArquivo, std::uint32_t eModulo)
      : CQVFileSingleRegBase(std::move(sNomeArquivo), eModulo, sizeof(T), QVNomeEstrutura<T>()) {}

  [[nodiscard]] HRESULT Le(T* pRegistro) { return LeRegistro(pRegistro); }
  [[nodiscard]] HRESULT Grava(const T& registro) { return GravaRegistro(&registro); }
};
