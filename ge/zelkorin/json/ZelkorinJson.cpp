#include "ge/zelkorin/json/ZelkorinJson.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

#include "df/qvlibex/QVDatas.h"
#include "platform/QVCodePage.h"
#include "platform/QVTaskMem.h"

// Reading stops at the first failure, whose place and reason are already
// in the error; nothing more is logged on the way up.
#define QV_CHECK_SEM_LOG(expr)                               \
  do {                                                       \
    if (const HRESULT hr_ = (expr); FAILED(hr_)) return hr_; \
  } while (0)

namespace {

// ---- integers of any width, little-endian like the machine ----

std::uint64_t LeBits(const std::uint8_t* p, unsigned largura) {
  std::uint64_t v = 0;
  std::memcpy(&v, p, largura);
  return v;
}

void EscreveBits(std::uint8_t* p, unsigned largura, std::uint64_t v) { std::memcpy(p, &v, largura); }

std::int64_t ComSinal(std::uint64_t bits, unsigned largura) {
  const unsigned sobra = 64 - 8 * largura;
  return static_cast<std::int64_t>(bits << sobra) >> sobra;
}

std::uint64_t Maximo(unsigned largura, bool bComSinal) {
  const unsigned bits = 8 * largura - (bComSinal ? 1 : 0);
  return bits == 64 ? std::numeric_limits<std::uint64_t>::max() : (std::uint64_t{1} << bits) - 1;
}

std::int64_t Minimo(unsigned largura, bool bComSinal) {
  return bComSinal ? -static_cast<std::int64_t>(Maximo(largura, true)) - 1 : 0;
}

QVJson Numero(std::uint64_t bits, unsigned largura, bool bComSinal) {
  if (bComSinal) return ComSinal(bits, largura);
  return bits;
}

// ---- printed forms; "" when the value has none ----

std::string Formata(const char* formato, auto... valores) {
  char buf[64];
  std::snprintf(buf, sizeof buf, formato, valores...);
  return buf;
}

std::string TextoMoeda(std::int64_t v) {
  const std::uint64_t a = v < 0 ? 0 - static_cast<std::uint64_t>(v) : static_cast<std::uint64_t>(v);
  return Formata("%s%llu.%04llu", v < 0 ? "-" : "", static_cast<unsigned long long>(a / 10000),
                 static_cast<unsigned long long>(a % 10000));
}

std::string TextoDia(std::uint32_t dia) {
  int a = 0, m = 0, d = 0;
  if (!QVDiaDecompoe(dia, &a, &m, &d) || a > 9999 || QVDia(a, m, d) != dia) return {};
  return Formata("%04d-%02d-%02d", a, m, d);
}

std::string TextoMes(std::uint16_t iMA) {
  int a = 0, m = 0;
  if (!QVMesAnoDecompoe(iMA, &a, &m)) return {};
  return Formata("%04d-%02d", a, m);
}

std::string TextoHora(std::uint16_t valor) {
  int h = 0, m = 0;
  if (!QVHoraMinutoDecompoe(valor, &h, &m)) return {};
  return Formata("%02d:%02d", h, m);
}

std::string TextoStatus(std::uint32_t hr) { return Formata("0x%08X", hr); }

// The blocks of linked-information field identifiers, 50 apart.
constexpr const char* kBlocosIE[] = {
    "IE_CAMPO_LIVRE_DMA_0", "IE_CAMPO_LIVRE_MA_0",    "IE_CAMPO_LIVRE_TEXTO_0",
    "IE_CAMPO_LIVRE_V0_0",  "IE_CAMPO_LIVRE_V2_0",    "IE_CAMPO_LIVRE_V4_0",
    "IE_CAMPO_LIVRE_V8_0",  "IE_CAMPO_INF_COMPL_COD", "IE_CAMPO_HORA",
};
static_assert(IE_CAMPO_LIVRE_DMA_0 + 50 * std::size(kBlocosIE) == IE_CAMPO_COUNT);

std::string TextoCampoIE(std::uint32_t id) {
  if (id < IE_CAMPO_LIVRE_DMA_0 || id >= IE_CAMPO_COUNT) return {};
  const std::uint32_t k = id - IE_CAMPO_LIVRE_DMA_0;
  std::string s = kBlocosIE[k / 50];
  if (k % 50 != 0) s += "+" + std::to_string(k % 50);
  return s;
}

std::string Hex(const std::uint8_t* p, std::size_t n) {
  static constexpr char kDigitos[] = "0123456789abcdef";
  std::string s;
  for (std::size_t i = 0; i < n; ++i) {
    s += kDigitos[p[i] >> 4];
    s += kDigitos[p[i] & 15];
  }
  return s;
}

bool Utf8Valido(std::string_view s) {
  for (std::size_t i = 0; i < s.size();) {
    const auto c = static_cast<unsigned char>(s[i]);
    if (c < 0x80) {
      ++i;
      continue;
    }
    std::size_t n = 0;  // continuation bytes
    std::uint32_t cp = 0;
    if (c >= 0xC2 && c <= 0xDF) {
      n = 1, cp = c & 0x1Fu;
    } else if (c >= 0xE0 && c <= 0xEF) {
      n = 2, cp = c & 0x0Fu;
    } else if (c >= 0xF0 && c <= 0xF4) {
      n = 3, cp = c & 0x07u;
    } else {
      return false;
    }
    if (s.size() - i <= n) return false;
    for (std::size_t k = 1; k <= n; ++k) {
      const auto d = static_cast<unsigned char>(s[i + k]);
      if ((d & 0xC0) != 0x80) return false;
      cp = (cp << 6) | (d & 0x3Fu);
    }
    // Overlong forms, surrogates and code points past U+10FFFF.
    if ((n == 2 && cp < 0x800) || (n == 3 && (cp < 0x10000 || cp > 0x10FFFF)) || (cp >= 0xD800 && cp < 0xE000))
      return false;
    i += n + 1;
  }
  return true;
}

bool Oculto(const QVJsonCampo& c) { return c.tipo == EQVJsonCampo::Contagem || c.tipo == EQVJsonCampo::Reservado; }

const QVJsonCampo& CampoValor(const QVJsonRegistro& t) {
  for (const QVJsonCampo& c : t.campos)
    if (!Oculto(c)) return c;
  return t.campos.front();  // every table printed as a value has one; checked by the tests
}

std::uint64_t Contagem(const QVJsonCampo& c, const std::uint8_t* base) {
  return LeBits(base + c.offContagem, c.largContagem);
}

template <class P>
P* Ponteiro(const QVJsonCampo& c, const std::uint8_t* base) {
  P* p = nullptr;
  std::memcpy(&p, base + c.offset, sizeof p);
  return p;
}

bool Zerado(const std::uint8_t* p, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i)
    if (p[i] != 0) return false;
  return true;
}

// ---- reading JSON ----

// What a value is, for the messages: its text, cut short.
std::string Descreve(const QVJson& v) {
  std::string s = QVJsonTexto(v, -1);
  if (s.size() > 40) s = s.substr(0, 37) + "...";
  switch (v.type()) {
    case QVJson::value_t::object:
      return "um objeto";
    case QVJson::value_t::array:
      return "uma lista";
    case QVJson::value_t::string:
      return "o texto " + s;
    case QVJson::value_t::boolean:
      return s;
    default:
      return "o valor " + s;
  }
}

std::string NomeTipo(unsigned largura, bool bComSinal) {
  return std::string(bComSinal ? "i" : "u") + std::to_string(8 * largura) + " (" +
         (bComSinal ? std::to_string(Minimo(largura, true)) : std::string("0")) + " a " +
         std::to_string(Maximo(largura, bComSinal)) + ")";
}

class CLeitor {
 public:
  CLeitor(std::uint64_t* pBytes, QVErroJson* pErro) : m_pBytes(pBytes), m_pErro(pErro) {}

  HRESULT Falha(const std::string& sLugar, std::string sMotivo) {
    m_pErro->sLugar = sLugar;
    m_pErro->sMotivo = std::move(sMotivo);
    return E_INVALIDARG;
  }

  // v as an integer of a width: signed, unsigned, or (bLivre) either
  // reading of the same bits, as a status or identifier may be written.
  HRESULT Inteiro(const QVJson& v, unsigned largura, bool bComSinal, const std::string& sLugar, std::uint64_t* pBits,
                  bool bLivre = false) {
    if (!v.is_number_integer()) return Falha(sLugar, "esperado um número inteiro, não " + Descreve(v));
    const std::uint64_t maximo = Maximo(largura, bComSinal && !bLivre);
    const std::int64_t minimo = Minimo(largura, bComSinal || bLivre);
    if (v.is_number_unsigned() ? v.get<std::uint64_t>() > maximo : v.get<std::int64_t>() < minimo)
      return Falha(sLugar, "o valor " + QVJsonTexto(v, -1) + " não cabe em " +
                               (bLivre ? std::to_string(8 * largura) + " bits (" + std::to_string(minimo) + " a " +
                                             std::to_string(maximo) + ")"
                                       : NomeTipo(largura, bComSinal)));
    *pBits = v.is_number_unsigned() ? v.get<std::uint64_t>() : static_cast<std::uint64_t>(v.get<std::int64_t>());
    return S_OK;
  }

  // Bytes about to be allocated for the value being read.
  HRESULT Aloca(std::uint64_t n, const std::string& sLugar, void** pp) {
    if (n > kQVJsonMaxBytes - *m_pBytes)
      return Falha(sLugar, "o valor passa de " + std::to_string(kQVJsonMaxBytes >> 20) + " MiB");
    *pp = CoTaskMemAlloc(n);
    if (*pp == nullptr) {
      Falha(sLugar, "sem memória");
      return E_OUTOFMEMORY;
    }
    std::memset(*pp, 0, n);
    *m_pBytes += n;
    return S_OK;
  }

  // A string in the suite's code page: no character outside it, no zero.
  HRESULT TextoAnsi(const QVJson& v, const std::string& sLugar, std::string* pAnsi) {
    if (!v.is_string()) return Falha(sLugar, "esperado um texto, não " + Descreve(v));
    const auto& s = v.get_ref<const std::string&>();
    if (s.find('\0') != std::string::npos) return Falha(sLugar, "o texto tem um caractere nulo");
    if (!QVUtf8ToAnsiExato(s, pAnsi))
      return Falha(sLugar, "o texto tem caracteres fora da página de código da suíte (Windows-1252)");
    return S_OK;
  }

  HRESULT Moeda(const QVJson& v, const std::string& sLugar, std::int64_t* pValor) {
    const std::string sUso = " (use um texto como \"-1234.5000\": ponto decimal, até quatro casas, ou um número)";
    if (v.is_string()) {
      if (!LeMoeda(v.get_ref<const std::string&>(), pValor))
        return Falha(sLugar, "valor monetário inválido: " + Descreve(v) + sUso);
      return S_OK;
    }
    if (v.is_number_integer()) {
      std::uint64_t bits = 0;
      QV_CHECK_SEM_LOG(Inteiro(v, 8, true, sLugar, &bits));
      if (__builtin_mul_overflow(static_cast<std::int64_t>(bits), kEscala, pValor))
        return Falha(sLugar, "valor monetário fora do intervalo: " + Descreve(v) + sUso);
      return S_OK;
    }
    if (v.is_number_float()) {
      // Exact to four decimals below a billion, where a double's error
      // scaled by 10,000 stays far below the fifth decimal; past it, or
      // with more decimals, the text says what was meant.
      const double x = v.get<double>();
      const double escalado = x * kEscala;
      const double arredondado = std::nearbyint(escalado);
      if (!(std::fabs(x) < 1e9) || std::fabs(escalado - arredondado) > 1e-6 + 1e-15 * std::fabs(escalado))
        return Falha(sLugar, "número com mais de quatro casas ou fora de ±1000000000: " + Descreve(v) + sUso);
      *pValor = static_cast<std::int64_t>(arredondado);
      return S_OK;
    }
    return Falha(sLugar, "esperado um valor monetário, não " + Descreve(v) + sUso);
  }

  HRESULT Escreve(const QVJsonCampo& c, const QVJson& v, std::uint8_t* base, const std::string& sLugar);
  HRESULT Registro(const QVJsonRegistro& t, const QVJson& j, std::uint8_t* r, const std::string& sLugar);

 private:
  static constexpr std::int64_t kEscala = 10000;

  // "-1234.5", "0.0001", "12": at most four decimals, no exponent, no sign
  // but a leading '-'.
  static bool LeMoeda(std::string_view s, std::int64_t* pValor) {
    std::size_t i = 0;
    const bool bNegativo = !s.empty() && s[0] == '-';
    if (bNegativo) ++i;
    const auto digito = [&] { return i < s.size() && s[i] >= '0' && s[i] <= '9'; };
    std::uint64_t inteiro = 0;
    const std::size_t inicio = i;
    for (; digito(); ++i) {
      if (inteiro > (std::uint64_t{1} << 63) / kEscala) return false;
      inteiro = inteiro * 10 + static_cast<unsigned>(s[i] - '0');
    }
    if (i == inicio) return false;
    std::uint64_t fracao = 0;
    int casas = 0;
    if (i < s.size() && s[i] == '.') {
      for (++i; digito(); ++i, ++casas) {
        if (casas == 4) return false;
        fracao = fracao * 10 + static_cast<unsigned>(s[i] - '0');
      }
      if (casas == 0) return false;
    }
    if (i != s.size()) return false;
    for (; casas < 4; ++casas) fracao *= 10;
    if (inteiro > (std::uint64_t{1} << 63) / kEscala) return false;
    const std::uint64_t a = inteiro * kEscala + fracao;
    if (a > (std::uint64_t{1} << 63) - (bNegativo ? 0 : 1)) return false;
    *pValor = static_cast<std::int64_t>(bNegativo ? 0 - a : a);
    return true;
  }

  std::uint64_t* m_pBytes;
  QVErroJson* m_pErro;
};

// Parses fixed-width digits of s at [i, i + n).
bool Digitos(std::string_view s, std::size_t i, std::size_t n, int* pValor) {
  int v = 0;
  for (std::size_t k = i; k < i + n; ++k) {
    if (k >= s.size() || s[k] < '0' || s[k] > '9') return false;
    v = v * 10 + (s[k] - '0');
  }
  *pValor = v;
  return true;
}

bool LeDiaIso(std::string_view s, std::uint32_t* pDia) {
  int a = 0, m = 0, d = 0;
  if (s.size() != 10 || s[4] != '-' || s[7] != '-' || !Digitos(s, 0, 4, &a) || !Digitos(s, 5, 2, &m) ||
      !Digitos(s, 8, 2, &d))
    return false;
  *pDia = QVDia(a, m, d);
  return *pDia != 0;
}

bool LeMesIso(std::string_view s, std::uint16_t* pMes) {
  int a = 0, m = 0;
  if (s.size() != 7 || s[4] != '-' || !Digitos(s, 0, 4, &a) || !Digitos(s, 5, 2, &m) || a < 1848) return false;
  *pMes = QVMesAno(a, m);
  return *pMes != 0;
}

bool LeHora(std::string_view s, std::uint16_t* pHora) {
  int h = 0, m = 0;
  if (s.size() != 5 || s[2] != ':' || !Digitos(s, 0, 2, &h) || !Digitos(s, 3, 2, &m)) return false;
  *pHora = QVHoraMinuto(h, m);
  return *pHora != kQVHoraInvalida;
}

bool LeHex(std::string_view s, std::uint8_t* p, std::size_t n) {
  if (s.size() != 2 * n) return false;
  for (std::size_t i = 0; i < s.size(); ++i) {
    const char ch = s[i];
    int d = 0;
    if (ch >= '0' && ch <= '9')
      d = ch - '0';
    else if (ch >= 'a' && ch <= 'f')
      d = ch - 'a' + 10;
    else if (ch >= 'A' && ch <= 'F')
      d = ch - 'A' + 10;
    else
      return false;
    p[i / 2] = static_cast<std::uint8_t>((p[i / 2] << 4) | d);
  }
  return true;
}

bool LeStatus(std::string_view s, std::uint32_t* pHr) {
  if (s.size() < 3 || s.size() > 10 || s[0] != '0' || (s[1] != 'x' && s[1] != 'X')) return false;
  std::uint32_t v = 0;
  for (std::size_t i = 2; i < s.size(); ++i) {
    std::uint8_t b = 0;
    const char par[2] = {'0', s[i]};
    if (!LeHex(std::string_view(par, 2), &b, 1)) return false;
    v = (v << 4) | b;
  }
  *pHr = v;
  return true;
}

bool LeCampoIE(std::string_view s, std::uint32_t* pId) {
  const std::size_t mais = s.find('+');
  const std::string_view nome = s.substr(0, mais);
  int k = 0;
  if (mais != std::string_view::npos) {
    const std::string_view n = s.substr(mais + 1);
    if (n.empty() || n.size() > 2 || !Digitos(n, 0, n.size(), &k) || k >= 50) return false;
  }
  for (std::size_t b = 0; b < std::size(kBlocosIE); ++b)
    if (nome == kBlocosIE[b]) {
      *pId = static_cast<std::uint32_t>(IE_CAMPO_LIVRE_DMA_0 + 50 * b + k);
      return true;
    }
  return false;
}

std::string Junta(const std::string& sLugar, std::string_view nome) {
  return sLugar.empty() ? std::string(nome) : sLugar + "." + std::string(nome);
}

HRESULT CLeitor::Escreve(const QVJsonCampo& c, const QVJson& v, std::uint8_t* base, const std::string& sLugar) {
  std::uint8_t* p = base + c.offset;
  std::uint64_t bits = 0;
  // A value given in its printed form: what it should be and how to write it.
  const auto texto = [&](auto le, const char* sEsperado, const char* sUso) -> HRESULT {
    if (!le(v.get_ref<const std::string&>()))
      return Falha(sLugar, std::string(sEsperado) + ": " + Descreve(v) + " (use " + sUso + ")");
    return S_OK;
  };
  switch (c.tipo) {
    case EQVJsonCampo::Inteiro:
      QV_CHECK_SEM_LOG(Inteiro(v, c.largura, c.bComSinal, sLugar, &bits));
      break;
    case EQVJsonCampo::Caractere:
      if (v.is_string()) {
        std::string sAnsi;
        if (!QVUtf8ToAnsiExato(v.get_ref<const std::string&>(), &sAnsi) || sAnsi.size() != 1)
          return Falha(sLugar, "esperado um caractere ou um número de 0 a 255, não " + Descreve(v));
        bits = static_cast<std::uint8_t>(sAnsi[0]);
      } else {
        QV_CHECK_SEM_LOG(Inteiro(v, c.largura, c.bComSinal, sLugar, &bits));
      }
      break;
    case EQVJsonCampo::Booleano:
      if (v.is_boolean())
        bits = v.get<bool>() ? 1 : 0;
      else
        QV_CHECK_SEM_LOG(Inteiro(v, c.largura, c.bComSinal, sLugar, &bits));
      break;
    case EQVJsonCampo::Moeda: {
      std::int64_t valor = 0;
      QV_CHECK_SEM_LOG(Moeda(v, sLugar, &valor));
      bits = static_cast<std::uint64_t>(valor);
      break;
    }
    case EQVJsonCampo::Dia:
      if (v.is_string()) {
        std::uint32_t dia = 0;
        QV_CHECK_SEM_LOG(texto([&](std::string_view s) { return LeDiaIso(s, &dia); }, "data inválida",
                               "\"AAAA-MM-DD\", de 1899-12-31 a 9999-12-31, ou o número do dia"));
        if (dia > Maximo(c.largura, false))
          return Falha(sLugar, Descreve(v) + " não cabe num dia de 16 bits (até " + TextoDia(0xFFFF) + ")");
        bits = dia;
      } else {
        QV_CHECK_SEM_LOG(Inteiro(v, c.largura, c.bComSinal, sLugar, &bits));
      }
      break;
    case EQVJsonCampo::MesAno:
      if (v.is_string()) {
        std::uint16_t mes = 0;
        QV_CHECK_SEM_LOG(texto([&](std::string_view s) { return LeMesIso(s, &mes); }, "mês inválido",
                               "\"AAAA-MM\", de 1848-01 a 4717-12, ou o código do mês"));
        bits = mes;
      } else {
        QV_CHECK_SEM_LOG(Inteiro(v, c.largura, c.bComSinal, sLugar, &bits));
      }
      break;
    case EQVJsonCampo::Hora:
      if (v.is_string()) {
        std::uint16_t hora = 0;
        QV_CHECK_SEM_LOG(texto([&](std::string_view s) { return LeHora(s, &hora); }, "hora inválida",
                               "\"HH:MM\", de 00:00 a 23:59, ou os minutos desde a meia-noite"));
        bits = hora;
      } else {
        QV_CHECK_SEM_LOG(Inteiro(v, c.largura, c.bComSinal, sLugar, &bits));
      }
      break;
    case EQVJsonCampo::Status:
    case EQVJsonCampo::CampoIE:
      if (v.is_string()) {
        std::uint32_t valor = 0;
        if (c.tipo == EQVJsonCampo::Status)
          QV_CHECK_SEM_LOG(texto([&](std::string_view s) { return LeStatus(s, &valor); }, "status inválido",
                                 "\"0x80004001\" ou um número"));
        else
          QV_CHECK_SEM_LOG(
              texto([&](std::string_view s) { return LeCampoIE(s, &valor); }, "identificador inválido",
                    "\"IE_CAMPO_LIVRE_TEXTO_0+3\": um bloco e, de 0 a 49, o número do campo; ou um número"));
        bits = valor;
      } else {
        QV_CHECK_SEM_LOG(Inteiro(v, c.largura, c.bComSinal, sLugar, &bits, true));
      }
      break;
    case EQVJsonCampo::Texto: {
      std::string sAnsi;
      QV_CHECK_SEM_LOG(TextoAnsi(v, sLugar, &sAnsi));
      if (sAnsi.size() >= c.tamanho)
        return Falha(sLugar, "o texto tem " + std::to_string(sAnsi.size()) + " bytes e o campo (char[" +
                                 std::to_string(c.tamanho) + "]) guarda até " + std::to_string(c.tamanho - 1));
      std::memset(p, 0, c.tamanho);
      std::memcpy(p, sAnsi.data(), sAnsi.size());
      return S_OK;
    }
    case EQVJsonCampo::Bytes:
      if (v.is_number_integer() && c.tamanho <= 8) {
        QV_CHECK_SEM_LOG(Inteiro(v, c.tamanho, true, sLugar, &bits, true));
        EscreveBits(p, c.tamanho, bits);
        return S_OK;
      }
      if (!v.is_string() || !LeHex(v.get_ref<const std::string&>(), p, c.tamanho))
        return Falha(sLugar,
                     "esperados " + std::to_string(2 * c.tamanho) + " dígitos hexadecimais, não " + Descreve(v));
      return S_OK;
    case EQVJsonCampo::Bstr: {
      if (!v.is_string()) return Falha(sLugar, "esperado um texto, não " + Descreve(v));
      const std::u16string s = QVUtf8ToUtf16(v.get_ref<const std::string&>());
      if (s.size() > kQVJsonMaxElementos)
        return Falha(sLugar, "o texto passa de " + std::to_string(kQVJsonMaxElementos) + " caracteres");
      if (s.empty()) return S_OK;
      if (2 * s.size() > kQVJsonMaxBytes - *m_pBytes)
        return Falha(sLugar, "o valor passa de " + std::to_string(kQVJsonMaxBytes >> 20) + " MiB");
      BSTR b = SysAllocStringLen(s.data(), static_cast<std::uint32_t>(s.size()));
      if (b == nullptr) {
        Falha(sLugar, "sem memória");
        return E_OUTOFMEMORY;
      }
      *m_pBytes += 2 * s.size();
      std::memcpy(p, &b, sizeof b);
      return S_OK;
    }
    case EQVJsonCampo::Registro: {
      const QVJsonRegistro& t = c.elemento();
      if (c.nElementos == 1) return Registro(t, v, p, sLugar);
      if (!v.is_array() || v.size() > c.nElementos)
        return Falha(sLugar, "esperada uma lista de até " + std::to_string(c.nElementos) + " elementos, não " +
                                 Descreve(v) + (v.is_array() ? " de " + std::to_string(v.size()) : ""));
      for (std::size_t i = 0; i < v.size(); ++i)
        QV_CHECK_SEM_LOG(Registro(t, v[i], p + i * t.tamanho, sLugar + "[" + std::to_string(i) + "]"));
      return S_OK;
    }
    case EQVJsonCampo::Lista: {
      const QVJsonRegistro& t = c.elemento();
      const std::uint64_t maximo = std::min<std::uint64_t>(Maximo(c.largContagem, false), kQVJsonMaxElementos);
      if (!v.is_array()) return Falha(sLugar, "esperada uma lista, não " + Descreve(v));
      if (v.size() > maximo)
        return Falha(sLugar,
                     "a lista tem " + std::to_string(v.size()) + " elementos; o limite é " + std::to_string(maximo));
      if (v.empty()) return S_OK;
      void* lista = nullptr;
      QV_CHECK_SEM_LOG(Aloca(v.size() * t.tamanho, sLugar, &lista));
      // The list belongs to the record from here on: a failure below
      // leaves it to the record's owner to free.
      std::memcpy(p, &lista, sizeof lista);
      EscreveBits(base + c.offContagem, c.largContagem, v.size());
      for (std::size_t i = 0; i < v.size(); ++i)
        QV_CHECK_SEM_LOG(Registro(t, v[i], static_cast<std::uint8_t*>(lista) + i * t.tamanho,
                                  sLugar + "[" + std::to_string(i) + "]"));
      return S_OK;
    }
    case EQVJsonCampo::TextoPtr:
    case EQVJsonCampo::Bloco: {
      std::string bytes;
      if (c.tipo == EQVJsonCampo::TextoPtr) {
        QV_CHECK_SEM_LOG(TextoAnsi(v, sLugar, &bytes));
      } else if (v.is_string()) {
        bytes = v.get<std::string>();
        if (bytes.find('\0') != std::string::npos)
          return Falha(sLugar, "o texto tem um caractere nulo (dê os bytes como uma lista de números)");
      } else if (v.is_array()) {
        if (v.size() > kQVJsonMaxElementos)
          return Falha(sLugar, "a lista tem " + std::to_string(v.size()) + " bytes; o limite é " +
                                   std::to_string(kQVJsonMaxElementos));
        for (std::size_t i = 0; i < v.size(); ++i) {
          QV_CHECK_SEM_LOG(Inteiro(v[i], 1, false, sLugar + "[" + std::to_string(i) + "]", &bits));
          bytes += static_cast<char>(bits);
        }
      } else {
        return Falha(sLugar, "esperado um texto ou uma lista de bytes, não " + Descreve(v));
      }
      // A text travels with its terminating zero; an empty one is no bytes.
      const bool bTexto = v.is_string();
      if (bytes.empty()) return S_OK;
      const std::uint64_t n = bytes.size() + (bTexto ? 1 : 0);
      const std::uint64_t maximo = std::min<std::uint64_t>(Maximo(c.largContagem, false), kQVJsonMaxElementos);
      if (n > maximo)
        return Falha(sLugar, "o texto tem " + std::to_string(bytes.size()) + " bytes; o limite é " +
                                 std::to_string(maximo - (bTexto ? 1 : 0)));
      void* buffer = nullptr;
      QV_CHECK_SEM_LOG(Aloca(n, sLugar, &buffer));
      std::memcpy(buffer, bytes.data(), bytes.size());
      std::memcpy(p, &buffer, sizeof buffer);
      EscreveBits(base + c.offContagem, c.largContagem, n);
      return S_OK;
    }
    case EQVJsonCampo::Reservado:
      return Falha(sLugar, "campo reservado: é sempre zero e não se informa");
    case EQVJsonCampo::Contagem:
      return S_OK;  // checked by the record, after its lists
  }
  EscreveBits(p, c.largura, bits);
  return S_OK;
}

HRESULT CLeitor::Registro(const QVJsonRegistro& t, const QVJson& j, std::uint8_t* r, const std::string& sLugar) {
  if (j.is_null()) return S_OK;
  if (t.bValor) return Escreve(CampoValor(t), j, r, sLugar);
  if (!j.is_object()) return Falha(sLugar, std::string("esperado um objeto ") + t.nome + ", não " + Descreve(j));
  const auto procura = [&](std::string_view nome, bool bCaixa) -> const QVJsonCampo* {
    for (const QVJsonCampo& c : t.campos)
      if (bCaixa ? nome == c.nome : QVIguaisSemCaixa(nome, c.nome)) return &c;
    return nullptr;
  };
  for (const auto& [nome, v] : j.items()) {
    const QVJsonCampo* c = procura(nome, true);
    const std::string sCampo = Junta(sLugar, nome);
    if (c == nullptr) {
      const QVJsonCampo* parecido = procura(nome, false);
      return Falha(sCampo, std::string("campo desconhecido em ") + t.nome +
                               (parecido != nullptr ? std::string(" (quis dizer ") + parecido->nome + "?)" : ""));
    }
    if (!v.is_null()) QV_CHECK_SEM_LOG(Escreve(*c, v, r, sCampo));
  }
  // A count, when given, must be its list's length.
  for (const QVJsonCampo& c : t.campos) {
    if (c.tipo != EQVJsonCampo::Contagem || !j.contains(c.nome) || j[c.nome].is_null()) continue;
    const std::string sCampo = Junta(sLugar, c.nome);
    std::uint64_t dado = 0;
    QV_CHECK_SEM_LOG(Inteiro(j[c.nome], c.largura, false, sCampo, &dado));
    const std::uint64_t real = LeBits(r + c.offset, c.largura);
    if (dado != real) {
      std::string lista;
      for (const QVJsonCampo& l : t.campos)
        if (l.largContagem != 0 && l.offContagem == c.offset) lista = l.nome;
      return Falha(sCampo, std::to_string(dado) + " não é o tamanho de " + lista + " (" + std::to_string(real) +
                               "): a contagem vem da lista e pode ser omitida");
    }
  }
  return S_OK;
}

}  // namespace

QVJson QVJsonLeCampo(const QVJsonCampo& c, const void* vBase) {
  const auto* base = static_cast<const std::uint8_t*>(vBase);
  const std::uint8_t* p = base + c.offset;
  const auto numero = [&] { return Numero(LeBits(p, c.largura), c.largura, c.bComSinal); };
  // The printed form, else the number.
  const auto ou = [&](std::string s) -> QVJson { return s.empty() ? numero() : QVJson(std::move(s)); };
  switch (c.tipo) {
    case EQVJsonCampo::Inteiro:
    case EQVJsonCampo::Caractere:
      return numero();
    case EQVJsonCampo::Booleano: {
      const std::uint64_t bits = LeBits(p, c.largura);
      return bits <= 1 ? QVJson(bits == 1) : numero();
    }
    case EQVJsonCampo::Moeda:
      return TextoMoeda(static_cast<std::int64_t>(LeBits(p, 8)));
    case EQVJsonCampo::Dia:
      return LeBits(p, c.largura) == 0 ? QVJson() : ou(TextoDia(static_cast<std::uint32_t>(LeBits(p, c.largura))));
    case EQVJsonCampo::MesAno:
      return LeBits(p, 2) == 0 ? QVJson() : ou(TextoMes(static_cast<std::uint16_t>(LeBits(p, 2))));
    case EQVJsonCampo::Hora:
      return ou(TextoHora(static_cast<std::uint16_t>(LeBits(p, 2))));
    case EQVJsonCampo::Status:
      return TextoStatus(static_cast<std::uint32_t>(LeBits(p, 4)));
    case EQVJsonCampo::CampoIE:
      return ou(TextoCampoIE(static_cast<std::uint32_t>(LeBits(p, 4))));
    case EQVJsonCampo::Texto: {
      const auto* s = reinterpret_cast<const char*>(p);
      return QVAnsiToUtf8(std::string_view(s, strnlen(s, c.tamanho)));
    }
    case EQVJsonCampo::Bytes:
      return Hex(p, c.tamanho);
    case EQVJsonCampo::Bstr:
      return QVBstrToUtf8(Ponteiro<OLECHAR>(c, base));
    case EQVJsonCampo::Registro: {
      const QVJsonRegistro& t = c.elemento();
      if (c.nElementos == 1) return QVJsonDeRegistro(t, p);
      // Trailing elements that are all zero (and so own nothing) are left out.
      std::size_t n = c.nElementos;
      while (n > 0 && Zerado(p + (n - 1) * t.tamanho, t.tamanho)) --n;
      QVJson a = QVJson::array();
      for (std::size_t i = 0; i < n; ++i) a.push_back(QVJsonDeRegistro(t, p + i * t.tamanho));
      return a;
    }
    case EQVJsonCampo::Lista: {
      const QVJsonRegistro& t = c.elemento();
      const auto* lista = Ponteiro<const std::uint8_t>(c, base);
      QVJson a = QVJson::array();
      if (lista != nullptr)
        for (std::uint64_t i = 0, n = Contagem(c, base); i < n; ++i)
          a.push_back(QVJsonDeRegistro(t, lista + i * t.tamanho));
      return a;
    }
    case EQVJsonCampo::TextoPtr: {
      const auto* s = Ponteiro<const char>(c, base);
      return s == nullptr ? std::string() : QVAnsiToUtf8(std::string_view(s, strnlen(s, Contagem(c, base))));
    }
    case EQVJsonCampo::Bloco: {
      // A UTF-8 text with its terminating zero prints as the text; any
      // other block as its bytes.
      const auto* b = Ponteiro<const std::uint8_t>(c, base);
      const std::uint64_t n = b == nullptr ? 0 : Contagem(c, base);
      if (n == 0) return std::string();
      const std::string_view s(reinterpret_cast<const char*>(b), n - 1);
      if (n >= 2 && b[n - 1] == 0 && s.find('\0') == std::string_view::npos && Utf8Valido(s)) return std::string(s);
      QVJson a = QVJson::array();
      for (std::uint64_t i = 0; i < n; ++i) a.push_back(b[i]);
      return a;
    }
    case EQVJsonCampo::Contagem:
    case EQVJsonCampo::Reservado:
      break;
  }
  return {};
}

QVJson QVJsonDeRegistro(const QVJsonRegistro& t, const void* registro) {
  if (t.bValor) return QVJsonLeCampo(CampoValor(t), registro);
  QVJson j = QVJson::object();
  for (const QVJsonCampo& c : t.campos)
    if (!Oculto(c)) j[c.nome] = QVJsonLeCampo(c, registro);
  return j;
}

HRESULT QVJsonEscreveCampo(const QVJsonCampo& campo, const QVJson& v, void* base, const std::string& sLugar,
                           std::uint64_t* pBytes, QVErroJson* pErro) {
  CLeitor leitor(pBytes, pErro);
  return v.is_null() ? S_OK : leitor.Escreve(campo, v, static_cast<std::uint8_t*>(base), sLugar);
}

HRESULT QVRegistroDeJson(const QVJsonRegistro& tabela, const QVJson& j, void* registro, const std::string& sLugar,
                         std::uint64_t* pBytes, QVErroJson* pErro) {
  CLeitor leitor(pBytes, pErro);
  return leitor.Registro(tabela, j, static_cast<std::uint8_t*>(registro), sLugar);
}

std::string QVJsonTexto(const QVJson& j, int indentacao) {
  return j.dump(indentacao, ' ', false, QVJson::error_handler_t::replace);
}
