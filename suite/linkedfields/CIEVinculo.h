// Linked information ("informações vinculadas"): free fields that the suite
// lets a company attach to a record. A service call's linked data are keyed
// by the month of its date and its position; the filter of a search carries
// the same fields as criteria.
//
// Field ids are the suite's IE_E_CAMPO values: blocks of 50 from
// kQVCampoLivreBase, one block per kind (date, month, text, values of 0,
// 2, 4 and 8 decimal places), then the complementary-information code and
// the hour. A field's value is its 8-byte binary value (a day number, a
// month code, a scaled integer) or, for the text kind, its text.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

inline constexpr std::int32_t kQVCampoLivreBase = static_cast<std::int32_t>(0x8C000000u);

enum class EQVTipoCampoVinculo { Data, Mes, Texto, Valor0, Valor2, Valor4, Valor8, InfComplCodigo, Hora, Invalido };

// The kind of a field id (Invalido outside the suite's range).
EQVTipoCampoVinculo QVTipoCampoVinculo(std::int32_t id);

struct QVCampoVinculo {
  std::int32_t id = 0;
  std::int64_t valor = 0;  // the binary value, little-endian as on the wire
  std::string sTexto;      // the text kind's value (UTF-8)
  // A criterion that restricts nothing: no text for the text kind, 0 for
  // the others.
  bool Vazio() const;
};

class CIEVinculo {
 public:
  std::vector<QVCampoVinculo> m_campos;

  bool Vazio() const;
  // Adds a criterion or a stored field; an empty one is dropped.
  void Adiciona(const QVCampoVinculo& campo);
  const QVCampoVinculo* Procura(std::int32_t id) const;
  // Used as the filter's criteria: every non-empty criterion has a field of
  // the same id in dadosRegistro that matches: a text compares without
  // regard to case (the suite's code page's letters), any other kind must
  // be equal. True when this holds no criterion.
  bool Corresponde(const CIEVinculo& dadosRegistro) const;
};
