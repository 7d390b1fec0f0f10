// The process's marks of one database: one mark object per mark type,
// shared by every caller of the process that marks through this nucleus.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "df/qvlibex/CQVArqMarca.h"
#include "df/qvlibex/QVProfilerEmpresa.h"
#include "platform/QVHResult.h"

class IQVDF_MarcaNucleo {
 public:
  // Takes the mark of `tipo` in sPasta for the connection's user. S_OK, the
  // mark's message widened to a status, or a platform status.
  virtual HRESULT Marca(const IQVDF_Profiler* pConexao, const std::string& sPasta, std::uint8_t tipo,
                        const std::string& modulo) = 0;
  // Releases the mark of `tipo`; a type never marked is no failure.
  virtual HRESULT Desmarca(std::uint8_t tipo) = 0;
  virtual bool EstaMarcado(std::uint8_t tipo) const = 0;
  virtual ~IQVDF_MarcaNucleo() = default;
};

class CQVDatabaseMarcaNucleo : public IQVDF_MarcaNucleo {
 public:
  CQVDatabaseMarcaNucleo();
  // Deletes every mark object, which releases its mark.
  ~CQVDatabaseMarcaNucleo() override = default;
  CQVDatabaseMarcaNucleo(const CQVDatabaseMarcaNucleo&) = delete;
  CQVDatabaseMarcaNucleo& operator=(const CQVDatabaseMarcaNucleo&) = delete;

  HRESULT Marca(const IQVDF_Profiler* pConexao, const std::string& sPasta, std::uint8_t tipo,
                const std::string& modulo) override;
  HRESULT Desmarca(std::uint8_t tipo) override;
  bool EstaMarcado(std::uint8_t tipo) const override;

 private:
  // The threads of the process share the mark objects: one at a time uses
  // them. A mark that waits for another process holds the others back for
  // as long as it waits.
  mutable std::mutex m_mutex;
  std::unordered_map<std::uint8_t, std::unique_ptr<CQVArqMarca>> m_mapMarcas;
};
