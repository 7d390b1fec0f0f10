// What every data file offers, as the database and the group files see it.
#pragma once

#include <cstdint>
#include <string>

#include "core/qvdatabase/QVDataBaseTipos.h"
#include "suite/hostlink/CQVInicializador.h"

class CQVDataBase;

class IQVFileBase : public CQVInicializador {
 public:
  using CQVInicializador::Inicializa;
  // Initialises the file as a member of a database: its identity, its
  // directory and the database-wide switches come from it.
  [[nodiscard]] virtual HRESULT Inicializa(CQVDataBase* pDataBase) = 0;
  [[nodiscard]] virtual HRESULT DeletaArquivo() = 0;
  virtual std::string GetNomeArquivo() const = 0;
  virtual std::uint32_t GetModulo() const = 0;
  virtual void SetModulo(std::uint32_t eModulo) = 0;
  virtual QVUInt GetQtdRegistros() = 0;
  [[nodiscard]] virtual HRESULT DesabilitaControleCriacaoArquivos() = 0;
  // The record type's name; "Invalid" for files without records.
  virtual std::string GetNomeEstrutura() const = 0;
  // The directory that replaces the company's data directory for this file
  // ("" = the company's directory of the module).
  virtual std::string GetDiretorio() const = 0;
  // Lets other processes write the file: what this process wrote is flushed
  // (header included) and the file closed, memory kept. The next read looks
  // at the disk first; the next write opens the file again.
  [[nodiscard]] virtual HRESULT LiberaGravacao() { return S_OK; }
};
