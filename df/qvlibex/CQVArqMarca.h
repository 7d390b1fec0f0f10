// Database marks: an exclusive claim on a company's data folder for one kind
// of work, held by one process at a time.
//
// A mark is the file <folder>/XXMARCA<type>[<suffix>].dat opened for reading
// and writing with no sharing: while one handle holds it open, every other
// open of it, from any process or from another object of this one, is
// refused. The file has no content; it says nothing about its holder. A
// process that ends without unmarking leaves the file on disk, but its
// handle dies with it, so the next mark opens the stale file and succeeds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/QVOsFile.h"

// The mark type of the atendimento data (migration and writes of calls).
inline constexpr std::uint8_t MARCA_ATENDIMENTO = 7;

// The enumeration interface the mark objects are handed around by.
class IQVArqMarcaEnum {
 public:
  virtual ~IQVArqMarcaEnum() = 0;
};
inline IQVArqMarcaEnum::~IQVArqMarcaEnum() = default;

class CQVArqMarca : public IQVArqMarcaEnum {
 public:
  // How long a mark held by someone else is waited for, and the step
  // between attempts, as shipped.
  static constexpr std::uint32_t kEsperaPadraoMs = 50000;
  static constexpr std::uint32_t kPassoPadraoMs = 10;
  // Longest mark file path, and longest suffix.
  static constexpr std::size_t kMaxCaminho = 260;

  CQVArqMarca() = default;
  // Releases the mark, as Desmarca.
  ~CQVArqMarca() override;
  CQVArqMarca(const CQVArqMarca&) = delete;
  CQVArqMarca& operator=(const CQVArqMarca&) = delete;

  // Takes the mark of type `tipo` in sPasta, waiting while someone else
  // holds it. 0 on success, otherwise a message number (widened to a status
  // by the caller with QVHrDeMensagem), or a negative platform status for a
  // file-system failure other than the mark being held. The user and
  // module are accepted and written nowhere.
  std::int32_t Marca(const std::string& sPasta, std::uint8_t tipo, std::uint16_t usuario, const std::string& modulo,
                     const char* sufixo = nullptr);
  // Closes the mark and deletes its file (a file another handle holds open
  // survives). Always 0.
  std::int32_t Desmarca(bool bFlag = false);
  bool EstaMarcado() const { return m_pArquivo != nullptr; }

  // Tests only: shortens the wait so that a refused mark does not take 50 s.
  // Nothing else may call it; the shipped wait is the default above.
  static void DefineEsperaParaTestes(std::uint32_t ulEsperaMs, std::uint32_t ulPassoMs);

 private:
  std::string m_sCaminho;  // empty until the first Marca builds it
  std::unique_ptr<IQVOsFile> m_pArquivo;  // null when not marked
};
