// The JSON form of the wire records, for scripting clients.
//
// Every record has one table (QVJsonTabela<T>()) listing every byte of it
// as a field: its name as the wire names it, its offset, and its kind, which
// sets how it reads and prints. The kind comes from the field's C++ type and
// its Hungarian name, picked once where the table is written:
//
//   char[n]                    Texto      string; suite code page <-> UTF-8;
//                                         must fit n - 1 bytes
//   u8[n]                      Bytes      hex string of 2n digits (or an
//                                         integer, stored little-endian)
//   BSTR                       Bstr       string ("" for a null string)
//   _REG_DF_TEXTOPS            Registro   string (a record printed as its value)
//   other record               Registro   object; a fixed array of records
//                                         is a JSON array (trailing all-zero
//                                         elements left out when printing)
//   ptr + count                Lista      array; its length sets the count
//   ptr u8 text + count        TextoPtr   string (code page; the count is
//                                         length + 1, 0 when empty)
//   ptr u8 block + count       Bloco      string (a UTF-8 text sent with its
//                                         terminating zero) or array of bytes
//   count of a list or text    Contagem   not printed; on input only its
//                                         list's length is accepted
//   ...Filler, vFiler          Reservado  not printed; refused on input
//   v... i64                   Moeda      "1234.5000" (or a JSON number)
//   iData.../iPeriodo.../iEmissao...  Dia "2026-11-23"; 0 is null
//   iMA..., iMa...             MesAno     "2026-11"; 0 is null
//   iHora...                   Hora       "08:30"
//   b... (i32 or u8), pb...    Booleano   true/false
//   c... u8                    Caractere  number (or a one-character string)
//   hr                         Status     "0x80004001"
//   id (IE_E_CAMPO)            CampoIE    "IE_CAMPO_LIVRE_TEXTO_0+3"
//   other integers             Inteiro    number
//
// A value that has no printed form of its kind (a day number past 9999, a
// bool32 of 2, an hour of 0xFFFF, a month code past 34440) prints as its
// number, and every kind reads a number too: what prints reads back to the
// same bytes, but for what the wire calls reserved (fillers, bytes after a
// text's terminator). null reads as an omitted field: the field keeps its
// value, zero in a new record (an element of a list: all zero).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "df/qvlibex/QVRegistrosDF.h"
#include "ge/zelkorin/ZelkorinRegistros.h"
#include "platform/QVBstr.h"
#include "platform/QVHResult.h"

// Objects keep the order of the record's fields.
using QVJson = nlohmann::ordered_json;

enum class EQVJsonCampo : std::uint8_t {
  Inteiro,
  Caractere,
  Booleano,
  Moeda,
  Dia,
  MesAno,
  Hora,
  Status,
  CampoIE,
  Texto,
  Bytes,
  Bstr,
  Registro,
  Lista,
  TextoPtr,
  Bloco,
  Contagem,
  Reservado,
};

struct QVJsonRegistro;

struct QVJsonCampo {
  const char* nome;
  std::uint32_t offset;
  std::uint32_t tamanho;  // bytes of the record the field takes
  EQVJsonCampo tipo;
  std::uint8_t largura = 0;  // integers, counts: 1, 2, 4 or 8 bytes
  bool bComSinal = false;
  std::uint32_t nElementos = 1;                   // Registro: records side by side
  const QVJsonRegistro& (*elemento)() = nullptr;  // Registro, Lista
  std::uint32_t offContagem = 0;                  // Lista, TextoPtr, Bloco: the count's field
  std::uint8_t largContagem = 0;
};

struct QVJsonRegistro {
  const char* nome;
  std::uint32_t tamanho;
  std::span<const QVJsonCampo> campos;
  // Printed as the value of its one field that is neither a count nor
  // reserved (texts; the integers of a list of integers).
  bool bValor = false;
};

// Every record of the interfaces, by kind of ownership: records with an
// ownership descriptor (QVDescritor<T>()), and records that own nothing
// and travel as plain bytes inside others.
#define QV_REGISTROS_JSON_DONOS(X)                                                                      \
  X(_REG_DF_TEXTOPS) X(_REG_DF_FUNCAO_GENERICAPS) X(_REG_DF_INICIALIZAPS) X(_REG_DF_ERROPS)             \
  X(_REG_DF_LISTA_QVDMCPS) X(IE_CAMPO_DATA_PS) X(_REG_FILTRO_ATENDIMENTO_PS) X(_REG_LISTA_PONTEIROS_PS) \
  X(_REG_CLIENTES_ATENDIMENTO_PS) X(_REG_LISTA_REGISTROS_PS) X(_REG_FILTRO_AGENDA_PS)                   \
  X(_REG_LISTA_PONTEIROS_AGENDA) X(_REG_LISTA_SERVICOS_AGENDA_PS) X(_REG_GE_EVENTO_GOOGLEPS)            \
  X(_REG_GE_LISTA_EVENTO_GOOGLEPS) X(_REG_RETENCOES_PS) X(tagREG_EFD_REINF_ITENS_NFPS)                  \
  X(_REG_CLASSIFICACAO_GE_PS) X(_REG_SERVICO_ATENDIMENTO_PS) X(_REG_DESPESA_ATENDIMENTO_PS)             \
  X(_REG_ATENDIMENTO_PS) X(_REG_PROPRIEDADES_ATENDIMENTO_PS) X(_REG_RELATORIO_ATENDIMENTO_PS)           \
  X(_REG_FILTRO_REL_CONTROLE_HORAS) X(_REG_AGENDAMENTO_REL) X(_REG_LISTA_AGENDAMENTO_REL)               \
  X(_REG_REL_CONSULTA_AGENDAMENTO) X(_REG_FILTRO_PROJETO_PS) X(_REG_PTR_PROJETO_PS)                     \
  X(_REG_PROJETO_ATENDIMENTO_PS) X(_REG_LISTA_PROJETOS_PS)
#define QV_REGISTROS_JSON_SIMPLES(X)                                                                        \
  X(_REG_PONTEIRO_ATENDIMENTO_PS) X(_REG_PONTEIRO_AGENDA) X(_REG_SERVICO_AGENDA_PS) X(_ULT_ALTERACAO_ATTEC) \
  X(_REG_DEDUCOES_BC_INSS_PS) X(_REG_PIS_COFINS_GE_PS) X(tagREG_EFD_PROCESSO_JURIDICO_NFPS)                 \
  X(_REG_GERENCIAL_GE_PS) X(_REG_SESSAO_ATENDIMENTO_PS)

// The table of each record type.
template <class T>
const QVJsonRegistro& QVJsonTabela();
#define QV_DECLARA_TABELA_JSON(T) template <> const QVJsonRegistro& QVJsonTabela<T>();
QV_REGISTROS_JSON_DONOS(QV_DECLARA_TABELA_JSON)
QV_REGISTROS_JSON_SIMPLES(QV_DECLARA_TABELA_JSON)
#undef QV_DECLARA_TABELA_JSON
// The integers a list may hold: positions and codes (u32), 64-bit
// references (u64), month codes (u16).
const QVJsonRegistro& QVJsonTabelaU32();
const QVJsonRegistro& QVJsonTabelaU64();
const QVJsonRegistro& QVJsonTabelaMeses();

// Bounds of what is read: elements per list (and bytes per text or block,
// and characters per system string), as the transport allows them, and
// bytes allocated for one value, everything it owns included.
inline constexpr std::uint32_t kQVJsonMaxElementos = 1u << 20;
inline constexpr std::uint64_t kQVJsonMaxBytes = 64ull << 20;

// ---- the kind of a field, from its type and name ----

namespace qv_json_detalhe {

consteval bool Contem(std::string_view s, std::string_view parte) { return s.find(parte) != std::string_view::npos; }
// s starts with prefixo and, after it, ends or goes on with a capital letter.
consteval bool Prefixo(std::string_view s, std::string_view prefixo) {
  return s.starts_with(prefixo) &&
         (s.size() == prefixo.size() || (s[prefixo.size()] >= 'A' && s[prefixo.size()] <= 'Z'));
}

template <class C>
consteval EQVJsonCampo TipoInteiro(std::string_view n) {
  constexpr std::size_t w = sizeof(C);
  if (n == "hr" && w == 4) return EQVJsonCampo::Status;
  if (n == "id" && w == 4) return EQVJsonCampo::CampoIE;
  if (Prefixo(n, "v") && w == 8 && std::is_signed_v<C>) return EQVJsonCampo::Moeda;
  if ((Prefixo(n, "iData") || Prefixo(n, "iPeriodo") || Prefixo(n, "iEmissao")) && (w == 2 || w == 4))
    return EQVJsonCampo::Dia;
  if ((Prefixo(n, "iMA") || Prefixo(n, "iMa")) && w == 2) return EQVJsonCampo::MesAno;
  if (Prefixo(n, "iHora") && w == 2) return EQVJsonCampo::Hora;
  if ((Prefixo(n, "b") || Prefixo(n, "pb")) && (w == 1 || w == 4)) return EQVJsonCampo::Booleano;
  if (Prefixo(n, "c") && w == 1) return EQVJsonCampo::Caractere;
  return EQVJsonCampo::Inteiro;
}

}  // namespace qv_json_detalhe

// A field of type C named nome at offset: any type but a pointer to an
// array (QVJsonLista and its kin below).
template <class C>
consteval QVJsonCampo QVJsonCampoDe(const char* nome, std::size_t offset) {
  using namespace qv_json_detalhe;
  QVJsonCampo c{nome, static_cast<std::uint32_t>(offset), sizeof(C), EQVJsonCampo::Reservado};
  const std::string_view n = nome;
  if (Contem(n, "Filler") || Contem(n, "Filer")) return c;
  if constexpr (std::is_array_v<C>) {
    using E = std::remove_extent_t<C>;
    if constexpr (std::is_same_v<E, char>) {
      c.tipo = EQVJsonCampo::Texto;
    } else if constexpr (std::is_same_v<E, std::uint8_t>) {
      c.tipo = EQVJsonCampo::Bytes;
    } else if constexpr (!std::is_class_v<E>) {
      throw "a fixed array of integers is a filler or a text";
    } else {
      c.tipo = EQVJsonCampo::Registro;
      c.nElementos = static_cast<std::uint32_t>(std::extent_v<C>);
      c.elemento = &QVJsonTabela<E>;
    }
  } else if constexpr (std::is_same_v<C, BSTR>) {
    c.tipo = EQVJsonCampo::Bstr;
  } else if constexpr (std::is_class_v<C>) {
    c.tipo = EQVJsonCampo::Registro;
    c.elemento = &QVJsonTabela<C>;
  } else if constexpr (!std::is_integral_v<C>) {
    throw "a pointer field is a list (QVJsonLista) or a filler";
  } else {
    c.tipo = TipoInteiro<C>(n);
    c.largura = sizeof(C);
    c.bComSinal = std::is_signed_v<C>;
  }
  return c;
}

// An array pointer and its count: elements of the given table.
template <class Ptr, class Contagem>
consteval QVJsonCampo QVJsonLista(const char* nome, std::size_t offset, std::size_t offContagem,
                                  const QVJsonRegistro& (*elemento)(), EQVJsonCampo tipo = EQVJsonCampo::Lista) {
  static_assert(std::is_pointer_v<Ptr> && (std::is_unsigned_v<Contagem> || std::is_same_v<Contagem, std::int32_t>));
  QVJsonCampo c{nome, static_cast<std::uint32_t>(offset), sizeof(Ptr), tipo};
  c.elemento = elemento;
  c.offContagem = static_cast<std::uint32_t>(offContagem);
  c.largContagem = sizeof(Contagem);
  return c;
}

// Marks the count of every list of a table, and checks that the fields
// cover every byte of the record once, in order.
template <std::size_t N>
consteval std::array<QVJsonCampo, N> QVJsonMarcaContagens(std::array<QVJsonCampo, N> campos) {
  for (const QVJsonCampo& lista : campos)
    if (lista.largContagem != 0)
      for (QVJsonCampo& c : campos)
        if (c.offset == lista.offContagem) {
          c.tipo = EQVJsonCampo::Contagem;
          c.largura = lista.largContagem;
        }
  return campos;
}
template <std::size_t N>
consteval bool QVJsonCobre(const std::array<QVJsonCampo, N>& campos, std::size_t tamanho) {
  std::size_t fim = 0;
  for (const QVJsonCampo& c : campos) {
    if (c.offset != fim) return false;
    fim += c.tamanho;
  }
  return fim == tamanho;
}

// ---- conversion ----

// Where a value sits in the input and what is wrong with it:
// "chamadas[2].entrada.RegAtendimentoPs.pServicos[0].vValor: ...".
struct QVErroJson {
  std::string sLugar;
  std::string sMotivo;
  std::string Texto() const { return sLugar.empty() ? sMotivo : sLugar + ": " + sMotivo; }
};

// A field's value at base + campo.offset, printed.
QVJson QVJsonLeCampo(const QVJsonCampo& campo, const void* base);
// Reads v into the field at base + campo.offset; the field owns nothing
// before. On failure (E_INVALIDARG, or E_OUTOFMEMORY) *pErro says where and
// why, and whatever was allocated stays in the record for its owner's deep
// free. *pBytes counts the bytes allocated so far, against kQVJsonMaxBytes.
[[nodiscard]] HRESULT QVJsonEscreveCampo(const QVJsonCampo& campo, const QVJson& v, void* base,
                                         const std::string& sLugar, std::uint64_t* pBytes, QVErroJson* pErro);

// A record, printed.
QVJson QVJsonDeRegistro(const QVJsonRegistro& tabela, const void* registro);
// Reads j into a record that owns nothing: the fields j names are set, the
// others keep their value. Failures as QVJsonEscreveCampo.
[[nodiscard]] HRESULT QVRegistroDeJson(const QVJsonRegistro& tabela, const QVJson& j, void* registro,
                                       const std::string& sLugar, std::uint64_t* pBytes, QVErroJson* pErro);

template <class T>
QVJson QVParaJson(const T& registro) {
  return QVJsonDeRegistro(QVJsonTabela<T>(), &registro);
}
// *pRegistro is zeroed first; after a failure it owns nothing.
template <class T>
[[nodiscard]] HRESULT QVDeJson(const QVJson& j, T* pRegistro, const std::string& sLugar, QVErroJson* pErro) {
  std::memset(static_cast<void*>(pRegistro), 0, sizeof *pRegistro);
  std::uint64_t bytes = 0;
  const HRESULT hr = QVRegistroDeJson(QVJsonTabela<T>(), j, pRegistro, sLugar, &bytes, pErro);
  if (FAILED(hr)) QVLibera(pRegistro);
  return hr;
}

// Text of a document for printing: never throws, invalid UTF-8 replaced.
std::string QVJsonTexto(const QVJson& j, int indentacao = 2);
