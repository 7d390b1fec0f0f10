#include "suite/store/QVTabelasSuite.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <vector>

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVDatas.h"
#include "df/qvlibex/QVLog.h"
#include "df/qvlibex/QVMoeda.h"
#include "platform/QVCodePage.h"
#include "platform/QVOsFile.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "suite/store/CQVBancoSuite.h"

namespace {

using T = EQVTipoColunaSuite;
using Json = nlohmann::ordered_json;

constexpr std::int64_t kMaxPonteiro = 0xFFFFFFFF;

// ---- the descriptions ----------------------------------------------------------
// Each table's columns in the schema's order, with the schema's defaults in
// the files' form (the tests hold them to the schema).

constexpr QVColunaSuite Chave() {
  return {"ponteiro", T::Ponteiro, nullptr, kQVColunaNula, nullptr, nullptr, 1, kMaxPonteiro};
}
constexpr QVColunaSuite Empresa() { return {"ponteiro_empresa", T::Empresa, nullptr}; }
constexpr QVColunaSuite Texto(const char* n, const char* padrao = "") { return {n, T::Texto, padrao}; }
constexpr QVColunaSuite Inteiro(const char* n, const char* padrao = "0",
                                std::int64_t iMin = std::numeric_limits<std::int64_t>::min(),
                                std::int64_t iMax = std::numeric_limits<std::int64_t>::max()) {
  return {n, T::Inteiro, padrao, 0, nullptr, nullptr, iMin, iMax};
}
// A pointer whose 0 means none.
constexpr QVColunaSuite Ponteiro(const char* n, const char* ref) {
  return {n, T::Ponteiro, "0", 0, ref, nullptr, 0, kMaxPonteiro};
}
// A pointer that is NULL when none (a foreign key).
constexpr QVColunaSuite PonteiroNulo(const char* n, const char* ref) {
  return {n, T::Ponteiro, nullptr, kQVColunaNula, ref, nullptr, 0, kMaxPonteiro};
}
constexpr QVColunaSuite Logico(const char* n, const char* padrao) { return {n, T::Booleano, padrao}; }
constexpr QVColunaSuite Moeda(const char* n) { return {n, T::Moeda, "0"}; }
constexpr QVColunaSuite Data(const char* n) { return {n, T::Data}; }
constexpr QVColunaSuite Mes(const char* n) { return {n, T::Mes}; }
constexpr QVColunaSuite Exigida(QVColunaSuite c) {
  c.sPadrao = nullptr;
  return c;
}

constexpr QVColunaSuite kMunicipios[] = {Chave(), Exigida(Texto("nome")), Texto("uf"), Texto("codigo_ibge")};
constexpr QVColunaSuite kEmpresas[] = {Chave(),
                                       {"nome", T::Texto, nullptr, kQVColunaNomeEmpresa},
                                       Texto("razao_social"),
                                       Texto("nome_fantasia"),
                                       Texto("cnpj"),
                                       Texto("inscricao_estadual"),
                                       Texto("endereco"),
                                       PonteiroNulo("ponteiro_municipio", "municipios"),
                                       Texto("telefone"),
                                       Texto("email"),
                                       Texto("pasta")};
constexpr QVColunaSuite kUsuarios[] = {Chave(),         Exigida(Texto("login")), Texto("nome"),       Texto("email"),
                                       Texto("perfil"), Logico("executor", "0"), Logico("ativo", "1")};
constexpr QVColunaSuite kUsuariosEmpresas[] = {Exigida(Ponteiro("ponteiro_usuario", "usuarios")), Empresa()};
constexpr QVColunaSuite kFiliais[] = {Chave(),
                                      Empresa(),
                                      Texto("codigo"),
                                      Exigida(Texto("nome")),
                                      Texto("cnpj"),
                                      PonteiroNulo("ponteiro_municipio", "municipios"),
                                      Logico("ativa", "1")};
constexpr QVColunaSuite kFiliaisUsuarios[] = {Exigida(Ponteiro("ponteiro_usuario", "usuarios")),
                                              Exigida(Ponteiro("ponteiro_filial", "filiais"))};
constexpr QVColunaSuite kClientes[] = {Chave(),
                                       Empresa(),
                                       Texto("codigo"),
                                       Exigida(Texto("nome")),
                                       Texto("nome_fantasia"),
                                       Texto("cnpj_cpf"),
                                       Texto("inscricao_estadual"),
                                       Texto("endereco"),
                                       Texto("bairro"),
                                       Texto("cep"),
                                       PonteiroNulo("ponteiro_municipio", "municipios"),
                                       Texto("telefone"),
                                       Texto("email"),
                                       Logico("ativo", "1")};
constexpr QVColunaSuite kUnidades[] = {Chave(), Exigida(Texto("sigla")), Texto("descricao"),
                                       Inteiro("casas_decimais", "2", 0, 4)};
constexpr QVColunaSuite kServicos[] = {Chave(),
                                       Empresa(),
                                       Texto("codigo"),
                                       Exigida(Texto("descricao")),
                                       {"tipo", T::Texto, "S", 0, nullptr, "S|T"},
                                       Texto("classificacao"),
                                       PonteiroNulo("ponteiro_unidade", "unidades"),
                                       Moeda("valor_unitario"),
                                       Texto("codigo_tributacao_iss"),
                                       Logico("ativo", "1")};
constexpr QVColunaSuite kContratos[] = {Chave(),
                                        Empresa(),
                                        Exigida(Texto("codigo")),
                                        Exigida(Ponteiro("ponteiro_cliente", "clientes")),
                                        Data("data_inicio"),
                                        Data("data_fim"),
                                        Moeda("valor_hora"),
                                        Logico("ativo", "1")};
constexpr QVColunaSuite kParametrosGe[] = {
    Empresa(), Logico("permitir_classes_diferentes", "0"), Logico("relatorios_por_faturamento", "0"),
    Inteiro("origem_acompanhamento", "2"), Inteiro("versao_acompanhamento", "1")};
constexpr QVColunaSuite kNotasFiscais[] = {Chave(),
                                           Empresa(),
                                           Exigida(Inteiro("numero", "0", 1, kMaxPonteiro)),
                                           Texto("serie"),
                                           Exigida(Data("data_emissao")),
                                           Exigida(Ponteiro("ponteiro_cliente", "clientes")),
                                           Ponteiro("ponteiro_servico", "servicos"),
                                           Mes("ma_atendimento"),
                                           Inteiro("posicao_atendimento", "0", 0, kMaxPonteiro),
                                           Moeda("valor"),
                                           Moeda("valor_recebido"),
                                           Logico("cancelada", "0")};
constexpr QVColunaSuite kVinculos[] = {Empresa(),
                                       Exigida(Mes("ma")),
                                       Exigida(Inteiro("posicao", "0", 1, kMaxPonteiro)),
                                       Exigida(Inteiro("campo", "0", 0, kMaxPonteiro)),
                                       Inteiro("valor"),
                                       Texto("texto")};
constexpr QVColunaSuite kProjetos[] = {Chave(),
                                       Empresa(),
                                       Texto("codigo"),
                                       Texto("nome"),
                                       Ponteiro("ponteiro_cliente", "clientes"),
                                       Logico("inativo", "0")};
// Read only: what the server writes.
constexpr QVColunaSuite kAcompanhamentos[] = {Chave(),
                                              Empresa(),
                                              Exigida(Mes("ma")),
                                              Ponteiro("ponteiro_cliente", "clientes"),
                                              Ponteiro("ponteiro_filial", "filiais"),
                                              Data("data_abertura"),
                                              Data("data_conclusao"),
                                              Inteiro("situacao"),
                                              Inteiro("origem"),
                                              Inteiro("numero_nf"),
                                              Inteiro("versao_registro"),
                                              Moeda("valor_servicos"),
                                              Texto("observacao")};
constexpr QVColunaSuite kAcompanhamentoServicos[] = {Exigida(Ponteiro("ponteiro_acompanhamento", "acompanhamentos")),
                                                     Exigida(Inteiro("identificador")),
                                                     Ponteiro("ponteiro_servico", "servicos"),
                                                     Ponteiro("ponteiro_classe", "servicos"),
                                                     Logico("classe", "0"),
                                                     Ponteiro("ponteiro_executor", "usuarios"),
                                                     Inteiro("situacao"),
                                                     Data("data_prevista"),
                                                     Data("data_conclusao"),
                                                     Moeda("quantidade"),
                                                     Moeda("valor"),
                                                     Inteiro("dmc_atendimento"),
                                                     Inteiro("ponteiro_servico_atendimento"),
                                                     Texto("descricao")};
constexpr QVColunaSuite kIntegracoes[] = {Chave(), Empresa(), Exigida(Mes("ma")),
                                          Exigida(Ponteiro("ponteiro_acompanhamento", "acompanhamentos")),
                                          Exigida(Inteiro("dmc_atendimento"))};
constexpr QVColunaSuite kListasEventos[] = {Chave(), Empresa()};
constexpr QVColunaSuite kEventos[] = {Chave(),
                                      Exigida(Ponteiro("ponteiro_lista", "listas_eventos")),
                                      Exigida(Inteiro("ordem")),
                                      Ponteiro("usuario", "usuarios"),
                                      Texto("id_agenda"),
                                      Texto("id_evento")};
constexpr QVColunaSuite kLogTransacoes[] = {Chave(),
                                            Empresa(),
                                            Exigida(Ponteiro("usuario", "usuarios")),
                                            Exigida(Inteiro("sessao")),
                                            {"data_hora", T::DataHora, nullptr},
                                            Exigida(Inteiro("modulo")),
                                            Exigida(Inteiro("tipo")),
                                            Exigida(Texto("operacao")),
                                            Inteiro("chave"),
                                            Texto("texto")};

constexpr const char* kDaEmpresa = "ponteiro_empresa = ?1";

constexpr QVTabelaSuite kTabelas[] = {
    {"municipios", kMunicipios, false, nullptr, "ponteiro", {"ponteiro"}},
    {"empresas", kEmpresas, false, nullptr, "ponteiro", {"ponteiro"}},
    {"usuarios", kUsuarios, false, nullptr, "ponteiro", {"ponteiro", "login"}},
    {"usuarios_empresas",
     kUsuariosEmpresas,
     false,
     kDaEmpresa,
     "ponteiro_usuario",
     {"ponteiro_usuario,ponteiro_empresa"}},
    {"filiais", kFiliais, false, kDaEmpresa, "ponteiro", {"ponteiro"}},
    {"filiais_usuarios",
     kFiliaisUsuarios,
     false,
     "ponteiro_filial IN (SELECT ponteiro FROM filiais WHERE ponteiro_empresa = ?1)",
     "ponteiro_usuario, ponteiro_filial",
     {"ponteiro_usuario,ponteiro_filial"}},
    {"clientes", kClientes, false, kDaEmpresa, "ponteiro", {"ponteiro"}},
    {"unidades", kUnidades, false, nullptr, "ponteiro", {"ponteiro", "sigla"}},
    {"servicos", kServicos, false, kDaEmpresa, "ponteiro", {"ponteiro"}},
    {"contratos", kContratos, false, kDaEmpresa, "ponteiro", {"ponteiro"}},
    {"parametros_ge", kParametrosGe, false, kDaEmpresa, "ponteiro_empresa", {"ponteiro_empresa"}},
    {"notas_fiscais", kNotasFiscais, false, kDaEmpresa, "ponteiro", {"ponteiro", "ponteiro_empresa,serie,numero"}},
    {"vinculos", kVinculos, false, kDaEmpresa, "ma, posicao, campo", {"ponteiro_empresa,ma,posicao,campo"}},
    {"projetos", kProjetos, false, kDaEmpresa, "ponteiro", {"ponteiro"}},
    {"acompanhamentos", kAcompanhamentos, true, kDaEmpresa, "ma, ponteiro", {}},
    {"acompanhamento_servicos",
     kAcompanhamentoServicos,
     true,
     "ponteiro_acompanhamento IN (SELECT ponteiro FROM acompanhamentos WHERE ponteiro_empresa = ?1)",
     "ponteiro_acompanhamento, identificador",
     {}},
    {"integracoes_acompanhamento", kIntegracoes, true, kDaEmpresa, "ma, ponteiro", {}},
    {"listas_eventos", kListasEventos, true, kDaEmpresa, "ponteiro", {}},
    {"eventos",
     kEventos,
     true,
     "ponteiro_lista IN (SELECT ponteiro FROM listas_eventos WHERE ponteiro_empresa = ?1)",
     "ponteiro_lista, ordem",
     {}},
    {"log_transacoes", kLogTransacoes, true, kDaEmpresa, "data_hora, ponteiro", {}},
};

constexpr QVVisaoSuite kVisoes[] = {
    {"acompanhamentos", "acompanhamentos", "ma, ponteiro", "acompanhamento_servicos", "ponteiro_acompanhamento = ?1",
     "identificador", "servicos"},
    {"eventos", "listas_eventos", "ponteiro", "eventos", "ponteiro_lista = ?1", "ordem", "eventos"},
    {"log", "log_transacoes", "data_hora DESC, ponteiro DESC", nullptr, nullptr, nullptr, nullptr},
    {"vinculos", "vinculos", "ma, posicao, campo", nullptr, nullptr, nullptr, nullptr},
};

// ---- texts -------------------------------------------------------------------

// A value as quoted in a message: at most 60 bytes, cut at a character.
std::string Cita(std::string_view s) {
  if (s.size() <= 60) return "\"" + std::string(s) + "\"";
  std::size_t n = 60;
  while (n > 0 && (static_cast<unsigned char>(s[n]) & 0xC0) == 0x80) --n;
  return "\"" + std::string(s.substr(0, n)) + "…\"";
}

bool Utf8Valido(std::string_view s) {
  for (std::size_t i = 0; i < s.size();) {
    const auto c = static_cast<unsigned char>(s[i]);
    std::size_t n = 0;
    std::uint32_t cp = 0;
    if (c < 0x80)
      n = 1, cp = c;
    else if ((c & 0xE0) == 0xC0)
      n = 2, cp = c & 0x1F;
    else if ((c & 0xF0) == 0xE0)
      n = 3, cp = c & 0x0F;
    else if ((c & 0xF8) == 0xF0)
      n = 4, cp = c & 0x07;
    else
      return false;
    if (i + n > s.size()) return false;
    for (std::size_t k = 1; k < n; ++k) {
      const auto d = static_cast<unsigned char>(s[i + k]);
      if ((d & 0xC0) != 0x80) return false;
      cp = (cp << 6) | (d & 0x3F);
    }
    // Overlong forms, surrogates and values beyond Unicode.
    constexpr std::uint32_t kMenor[] = {0, 0, 0x80, 0x800, 0x10000};
    if (cp < kMenor[n] || (cp >= 0xD800 && cp <= 0xDFFF) || cp > 0x10FFFF) return false;
    i += n;
  }
  return true;
}

// Characters, not bytes, for the columns of a terminal.
std::size_t Largura(std::string_view s) {
  return static_cast<std::size_t>(
      std::count_if(s.begin(), s.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

// One line: control characters as spaces; cut at iMax characters (0: never).
std::string NumaLinha(std::string_view s, std::size_t iMax = 0) {
  std::string r;
  std::size_t n = 0;
  for (std::size_t i = 0; i < s.size(); ++i) {
    const auto c = static_cast<unsigned char>(s[i]);
    if ((c & 0xC0) != 0x80 && iMax != 0 && ++n > iMax) {
      // The last character kept gives way to the ellipsis.
      std::size_t fim = r.size();
      do --fim;
      while (fim > 0 && (static_cast<unsigned char>(r[fim]) & 0xC0) == 0x80);
      r.resize(fim);
      return r + "…";
    }
    r.push_back(c < 0x20 || c == 0x7F ? ' ' : s[i]);
  }
  return r;
}

std::vector<std::string_view> Divide(std::string_view s, char sep) {
  std::vector<std::string_view> partes;
  for (std::size_t i = 0;;) {
    const std::size_t j = s.find(sep, i);
    partes.push_back(s.substr(i, j == std::string_view::npos ? std::string_view::npos : j - i));
    if (j == std::string_view::npos) return partes;
    i = j + 1;
  }
}

bool LeInteiro(std::string_view s, std::int64_t* p) {
  if (s.empty()) return false;
  const auto [fim, ec] = std::from_chars(s.data(), s.data() + s.size(), *p);
  return ec == std::errc() && fim == s.data() + s.size();
}

bool Digitos(std::string_view s) {
  return !s.empty() && std::all_of(s.begin(), s.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// Dots only between groups of three digits of the integer part: "12.34"
// is no amount here, though QVMoedaLe, which lets them be left out, would
// read 1.234,00.
bool MilharesAgrupados(std::string_view s) {
  std::string_view sInteiro = s.substr(0, s.find(','));
  if (!sInteiro.empty() && (sInteiro.front() == '-' || sInteiro.front() == '+')) sInteiro.remove_prefix(1);
  if (sInteiro.find('.') == std::string_view::npos) return true;
  const auto grupos = Divide(sInteiro, '.');
  return !grupos[0].empty() && grupos[0].size() <= 3 &&
         std::all_of(grupos.begin() + 1, grupos.end(), [](std::string_view g) { return g.size() == 3; });
}

bool Falso(std::string* pMotivo, std::string motivo) {
  if (pMotivo != nullptr) *pMotivo = std::move(motivo);
  return false;
}

// A failure the caller reads: the message in *pErro and in the error line.
HRESULT Falha(const QVLocalFonte& local, std::string_view expressao, HRESULT hr, std::string sErro, std::string* pErro,
              std::vector<QVParametroLog> parametros = {}) {
  parametros.push_back({"sErro", sErro});
  QVLogaFalhaHr(local, expressao, hr, std::move(parametros));
  if (pErro != nullptr) *pErro = std::move(sErro);
  return hr;
}

// ---- values as stored and as written -----------------------------------------

// The decimals a currency value needs to be written exactly (at least 2).
int DecimaisMoeda(std::int64_t v) {
  if (v % 100 == 0) return 2;
  return v % 10 == 0 ? 3 : 4;
}

// A column of a row in the files' form (a value out of its kind's range
// is written as its number, so that an import refuses it, loudly).
std::string CampoTexto(const QVColunaSuite& c, const CQVComandoSuite& cmd, int i) {
  if (cmd.Nulo(i)) return {};
  if (c.eTipo == T::Texto) return cmd.Texto(i);
  const std::int64_t v = cmd.Inteiro(i);
  switch (c.eTipo) {
    case T::Moeda:
      return QVMoedaTexto(v, DecimaisMoeda(v));
    case T::Data:
      if (v == 0) return {};
      if (v > 0 && v <= kMaxPonteiro) return QVDiaTexto(static_cast<std::uint32_t>(v));
      break;
    case T::Mes:
      if (v == 0) return {};
      if (int a = 0, m = 0; v > 0 && v <= kQVMesAnoMaximo && QVMesAnoDecompoe(static_cast<std::uint16_t>(v), &a, &m)) {
        char s[16];
        std::snprintf(s, sizeof s, "%04d-%02d", a, m);
        return s;
      }
      break;
    case T::DataHora:
      if (v == 0) return {};
      if (v > 0) return QVDataHoraTexto(v);
      break;
    default:
      break;
  }
  return std::to_string(v);
}

Json CampoJson(const QVColunaSuite& c, const CQVComandoSuite& cmd, int i) {
  if (cmd.Nulo(i)) return nullptr;
  switch (c.eTipo) {
    case T::Inteiro:
    case T::Ponteiro:
      return cmd.Inteiro(i);
    case T::Booleano:
      if (const std::int64_t v = cmd.Inteiro(i); v == 0 || v == 1) return v == 1;
      return cmd.Inteiro(i);
    default:
      return CampoTexto(c, cmd, i);
  }
}

// A JSON value of an import file in the files' text form. Texts, dates and
// months must be strings; a currency may be a number.
bool TextoDoJson(const QVColunaSuite& c, const Json& v, std::string* pTexto, std::string* pMotivo) {
  pTexto->clear();
  if (v.is_null()) return true;
  if (v.is_string()) {
    *pTexto = v.get<std::string>();
    return true;
  }
  if (v.is_boolean()) {
    if (c.eTipo != T::Booleano)
      return Falso(pMotivo, "valor lógico (true/false) numa coluna de " + std::string(QVNomeTipoColunaSuite(c.eTipo)));
    *pTexto = v.get<bool>() ? "1" : "0";
    return true;
  }
  const bool bNumero = c.eTipo == T::Inteiro || c.eTipo == T::Ponteiro || c.eTipo == T::Moeda || c.eTipo == T::Booleano;
  if (!v.is_number() || !bNumero)
    return Falso(pMotivo, std::string(v.is_number() ? "número" : "valor composto (objeto ou lista)") +
                              " numa coluna de " + QVNomeTipoColunaSuite(c.eTipo) +
                              (v.is_number() ? " (escreva-o entre aspas)" : ""));
  *pTexto = v.dump();
  if (v.is_number_float()) {
    // The number's shortest exact text ("1234.56"), in the suite's form.
    if (c.eTipo != T::Moeda) return Falso(pMotivo, "número não inteiro: " + *pTexto);
    if (pTexto->find_first_of("eE") != std::string::npos)
      return Falso(pMotivo, "número com expoente: " + *pTexto + " (escreva 1234.56 ou \"1.234,56\")");
    std::replace(pTexto->begin(), pTexto->end(), '.', ',');
  }
  return true;
}

// ---- SQL from the descriptions -------------------------------------------------

// The columns a file or a listing shows: all but the company.
std::vector<int> ColunasVisiveis(const QVTabelaSuite& t) {
  std::vector<int> r;
  for (int i = 0; i < static_cast<int>(t.colunas.size()); ++i)
    if (t.colunas[i].eTipo != T::Empresa) r.push_back(i);
  return r;
}

std::string SqlSelecao(const QVTabelaSuite& t, const std::vector<int>& colunas, const char* sCondicao,
                       const char* sOrdem) {
  std::string sql = "SELECT ";
  for (std::size_t k = 0; k < colunas.size(); ++k) sql += (k ? ", " : "") + std::string(t.colunas[colunas[k]].sNome);
  sql += " FROM ";
  sql += t.sNome;
  if (sCondicao != nullptr) sql += std::string(" WHERE ") + sCondicao;
  return sql + " ORDER BY " + sOrdem;
}

// Runs a query (with ?1 bound when iParametro is given) and hands each row
// to porLinha, one at a time. Hold the store's lock.
HRESULT Percorre(CQVBancoSuite& banco, const std::string& sql, std::optional<std::int64_t> iParametro,
                 const std::function<HRESULT(const CQVComandoSuite&)>& porLinha) {
  CQVComandoSuite cmd;
  QV_CHECK(banco.Prepara(sql.c_str(), &cmd));
  if (iParametro) cmd.Liga(1, *iParametro);
  for (;;) {
    bool bLinha = false;
    QV_CHECK(cmd.Passo(&bLinha));
    if (!bLinha) return S_OK;
    QV_CHECK(porLinha(cmd));
  }
}

std::optional<std::int64_t> Escopo(const QVTabelaSuite& t, std::uint32_t lEmpresa) {
  return t.PorEmpresa() ? std::optional<std::int64_t>(lEmpresa) : std::nullopt;
}

std::string CampoCsv(const std::string& s) {
  if (s.find_first_of(",\"\r\n") == std::string::npos) return s;
  std::string r = "\"";
  for (char c : s) r += c == '"' ? std::string("\"\"") : std::string(1, c);
  return r + "\"";
}

bool EhNumerica(const QVColunaSuite& c) {
  return c.eTipo == T::Inteiro || c.eTipo == T::Ponteiro || c.eTipo == T::Moeda;
}

// ---- import ------------------------------------------------------------------

// A CSV reader over the whole text, one record at a time.
class CLeitorCsv {
 public:
  explicit CLeitorCsv(std::string_view s) : m_s(s) {
    if (m_s.starts_with("\xEF\xBB\xBF")) m_s.remove_prefix(3);
  }

  // The next record and the line it starts on; false at the end, or with
  // *pErro set when the text is not CSV. Blank lines are no records.
  bool Proximo(std::vector<std::string>* pCampos, std::size_t* pLinha, std::string* pErro) {
    pCampos->clear();
    while (m_i < m_s.size() && FimDeLinha() > 0) {
      m_i += FimDeLinha();
      ++m_iLinha;
    }
    if (m_i >= m_s.size()) return false;
    *pLinha = m_iLinha;
    for (;;) {
      std::string campo;
      if (m_i < m_s.size() && m_s[m_i] == '"') {
        for (++m_i;; ++m_i) {
          if (m_i >= m_s.size()) return Falso(pErro, "aspas abertas e nunca fechadas");
          if (m_s[m_i] == '"') {
            if (m_i + 1 < m_s.size() && m_s[m_i + 1] == '"') {
              campo.push_back('"');
              ++m_i;
              continue;
            }
            ++m_i;
            break;
          }
          if (m_s[m_i] == '\n') ++m_iLinha;
          campo.push_back(m_s[m_i]);
        }
        if (m_i < m_s.size() && m_s[m_i] != ',' && FimDeLinha() == 0)
          return Falso(pErro, "texto depois das aspas que fecham um campo");
      } else {
        while (m_i < m_s.size() && m_s[m_i] != ',' && FimDeLinha() == 0) {
          if (m_s[m_i] == '"')
            return Falso(pErro, "aspas no meio de um campo sem aspas (ponha o campo entre aspas e dobre as de dentro)");
          campo.push_back(m_s[m_i++]);
        }
      }
      pCampos->push_back(std::move(campo));
      if (m_i >= m_s.size()) return true;
      if (m_s[m_i] == ',') {
        ++m_i;
        continue;
      }
      m_i += FimDeLinha();
      ++m_iLinha;
      return true;
    }
  }

 private:
  // The length of the line break at the position (LF or CRLF), or 0.
  std::size_t FimDeLinha() const {
    if (m_s[m_i] == '\n') return 1;
    return m_s[m_i] == '\r' && m_i + 1 < m_s.size() && m_s[m_i + 1] == '\n' ? 2 : 0;
  }

  std::string_view m_s;
  std::size_t m_i = 0;
  std::size_t m_iLinha = 1;
};

// One file's rows into one table, within the caller's transaction.
class CImportacao {
 public:
  CImportacao(CQVBancoSuite& banco, const QVTabelaSuite& t, std::uint32_t lEmpresa, std::string* pErro)
      : m_banco(banco), m_t(t), m_lEmpresa(lEmpresa), m_pErro(pErro) {
    std::string sNomes, sParametros;
    for (std::size_t i = 0; i < t.colunas.size(); ++i) {
      const QVColunaSuite& c = t.colunas[i];
      sNomes += (i ? ", " : "") + std::string(c.sNome);
      sParametros += (i ? ", ?" : "?") + std::to_string(i + 1);
      QVValorSuite padrao;
      if (c.eTipo == T::Empresa)
        padrao = static_cast<std::int64_t>(lEmpresa);
      else if (!c.Obrigatoria())
        static_cast<void>(QVLeCampoSuite(c, "", &padrao, nullptr));
      m_padroes.push_back(std::move(padrao));
    }
    m_sInsert = "INSERT INTO " + std::string(t.sNome) + " (" + sNomes + ") VALUES (" + sParametros + ")";
    for (const char* sChave : t.chaves) {
      if (sChave == nullptr) continue;
      std::vector<int> colunas;
      for (std::string_view n : Divide(sChave, ',')) colunas.push_back(t.Coluna(n));
      m_chaves.push_back(std::move(colunas));
    }
  }

  std::size_t Linhas() const { return m_iLinhas; }

  // A bad row: the message names where and which column.
  HRESULT Recusa(const std::string& sOnde, std::string_view sColuna, const std::string& sMotivo) {
    std::string s = sOnde;
    if (!sColuna.empty())
      s += (sColuna.find(',') == std::string_view::npos ? ", coluna " : ", colunas ") + std::string(sColuna);
    return Falha(QV_LOCAL, "CImportacao::Recusa(sOnde, sColuna, sMotivo)", E_QVDF_IMPORTACAO_LINHA_INVALIDA,
                 s + ": " + sMotivo + "; nada foi importado", m_pErro, {{"sTabela", m_t.sNome}});
  }

  // The column a file names; -1 after refusing the name.
  int ColunaDoArquivo(const std::string& sOnde, const std::string& sNome, HRESULT* phr) {
    const int i = m_t.Coluna(sNome);
    if (i >= 0 && m_t.colunas[i].eTipo != T::Empresa) return i;
    *phr = Recusa(
        sOnde, sNome,
        i >= 0 ? "a empresa vem de --empresa, não do arquivo"
               : "coluna desconhecida em " + std::string(m_t.sNome) + " (zelkorin suite tables lista as colunas)");
    return -1;
  }

  // A row whose fields were read into valores (the rest holding defaults):
  // required columns, pointers, keys, then the insert.
  HRESULT Insere(const std::string& sOnde, const std::vector<QVValorSuite>& valores, const std::vector<bool>& dados) {
    for (std::size_t i = 0; i < m_t.colunas.size(); ++i) {
      const QVColunaSuite& c = m_t.colunas[i];
      if (c.eTipo != T::Empresa && c.Obrigatoria() && !dados[i]) return Recusa(sOnde, c.sNome, "obrigatória e ausente");
    }
    // A bad row was logged where it was found.
    HRESULT hr;
    QV_CHECK_HR(hr, VerificaPonteiros(sOnde, valores), E_QVDF_IMPORTACAO_LINHA_INVALIDA);
    if (FAILED(hr)) return hr;
    QV_CHECK_HR(hr, VerificaChaves(sOnde, valores), E_QVDF_IMPORTACAO_LINHA_INVALIDA);
    if (FAILED(hr)) return hr;
    CQVComandoSuite cmd;
    QV_CHECK(m_banco.Prepara(m_sInsert.c_str(), &cmd));
    for (std::size_t i = 0; i < valores.size(); ++i) Liga(cmd, static_cast<int>(i) + 1, valores[i]);
    QV_CHECK_HR(hr, cmd.Executa(), E_QVDF_BANCO_SUITE_FALHA);
    if (hr == E_QVDF_BANCO_SUITE_FALHA)
      return Recusa(sOnde, "",
                    "recusada pelo banco de dados (uma restrição da tabela; o log de erros traz o texto do SQLite)");
    ++m_iLinhas;
    return S_OK;
  }

  // The fields of one row into values, by column index.
  HRESULT LeCampo(const std::string& sOnde, int iColuna, std::string_view sTexto, std::vector<QVValorSuite>* pValores,
                  std::vector<bool>* pDados) {
    const QVColunaSuite& c = m_t.colunas[iColuna];
    std::string sMotivo;
    if (!QVLeCampoSuite(c, sTexto, &(*pValores)[iColuna], &sMotivo)) return Recusa(sOnde, c.sNome, sMotivo);
    (*pDados)[iColuna] = true;
    return S_OK;
  }

  const std::vector<QVValorSuite>& Padroes() const { return m_padroes; }
  const QVTabelaSuite& Tabela() const { return m_t; }

 private:
  static void Liga(CQVComandoSuite& cmd, int i, const QVValorSuite& v) {
    if (const auto* p = std::get_if<std::int64_t>(&v))
      cmd.Liga(i, *p);
    else if (const auto* s = std::get_if<std::string>(&v))
      cmd.Liga(i, std::string_view(*s));
    else
      cmd.LigaNulo(i);
  }

  HRESULT Existe(const std::string& sql, const std::vector<QVValorSuite>& valores, bool* pbExiste) {
    CQVComandoSuite cmd;
    QV_CHECK(m_banco.Prepara(sql.c_str(), &cmd));
    for (std::size_t i = 0; i < valores.size(); ++i) Liga(cmd, static_cast<int>(i) + 1, valores[i]);
    QV_CHECK(cmd.Passo(pbExiste));
    return S_OK;
  }

  // A pointer names a row of its table, of this company when that table is
  // per company: the schema alone would take another company's row.
  HRESULT VerificaPonteiros(const std::string& sOnde, const std::vector<QVValorSuite>& valores) {
    for (std::size_t i = 0; i < m_t.colunas.size(); ++i) {
      const QVColunaSuite& c = m_t.colunas[i];
      const auto* p = std::get_if<std::int64_t>(&valores[i]);
      if (c.sReferencia == nullptr || p == nullptr || (*p == 0 && !c.Obrigatoria())) continue;
      const QVTabelaSuite* pRef = QVProcuraTabelaSuite(c.sReferencia);
      const bool bDaEmpresa =
          pRef != nullptr && pRef->PorEmpresa() && m_lEmpresa != 0 && pRef->Coluna("ponteiro_empresa") >= 0;
      const std::string sql = "SELECT 1 FROM " + std::string(c.sReferencia) + " WHERE ponteiro = ?1" +
                              (bDaEmpresa ? " AND ponteiro_empresa = ?2" : "");
      std::vector<QVValorSuite> chave{*p};
      if (bDaEmpresa) chave.emplace_back(static_cast<std::int64_t>(m_lEmpresa));
      bool bExiste = false;
      QV_CHECK(Existe(sql, chave, &bExiste));
      if (!bExiste)
        return Recusa(sOnde, c.sNome,
                      "nenhuma linha de " + std::string(c.sReferencia) + (bDaEmpresa ? " da empresa" : "") +
                          " tem o ponteiro " + std::to_string(*p));
    }
    return S_OK;
  }

  // The unique keys, and company names as the suite compares them, which
  // SQLite's NOCASE (ASCII only) would not.
  HRESULT VerificaChaves(const std::string& sOnde, const std::vector<QVValorSuite>& valores) {
    for (const std::vector<int>& colunas : m_chaves) {
      std::string sql = "SELECT 1 FROM " + std::string(m_t.sNome) + " WHERE ";
      std::string sNomes;
      std::vector<QVValorSuite> chave;
      for (std::size_t k = 0; k < colunas.size(); ++k) {
        const QVColunaSuite& c = m_t.colunas[colunas[k]];
        sql += (k ? " AND " : "") + std::string(c.sNome) + " = ?" + std::to_string(k + 1);
        if (c.eTipo != T::Empresa) sNomes += (sNomes.empty() ? "" : ", ") + std::string(c.sNome);
        chave.push_back(valores[colunas[k]]);
      }
      if (std::any_of(chave.begin(), chave.end(), [](const QVValorSuite& v) { return v.index() == 0; })) continue;
      bool bExiste = false;
      QV_CHECK(Existe(sql, chave, &bExiste));
      if (bExiste)
        return Recusa(sOnde, sNomes.empty() ? "ponteiro_empresa" : sNomes,
                      "repete a chave de uma linha que já existe em " + std::string(m_t.sNome));
    }
    for (std::size_t i = 0; i < m_t.colunas.size(); ++i) {
      const QVColunaSuite& c = m_t.colunas[i];
      const auto* pNome = std::get_if<std::string>(&valores[i]);
      if ((c.fOpcoes & kQVColunaNomeEmpresa) == 0 || pNome == nullptr) continue;
      std::string sMotivo;
      if (FAILED(QVValidaNomeEmpresa(*pNome, &sMotivo)))
        return Recusa(sOnde, c.sNome, "nome de empresa inválido " + Cita(*pNome) + ": " + sMotivo);
      std::string sOutra;
      QV_CHECK(Percorre(m_banco, "SELECT nome FROM empresas", std::nullopt, [&](const CQVComandoSuite& cmd) {
        if (sOutra.empty() && QVIguaisSemCaixa(cmd.Texto(0), *pNome)) sOutra = cmd.Texto(0);
        return S_OK;
      }));
      if (!sOutra.empty())
        return Recusa(
            sOnde, c.sNome,
            Cita(*pNome) + " é a empresa " + Cita(sOutra) + " (maiúsculas e minúsculas não distinguem empresas)");
    }
    return S_OK;
  }

  CQVBancoSuite& m_banco;
  const QVTabelaSuite& m_t;
  std::uint32_t m_lEmpresa;
  std::string* m_pErro;
  std::string m_sInsert;
  std::vector<QVValorSuite> m_padroes;
  std::vector<std::vector<int>> m_chaves;
  std::size_t m_iLinhas = 0;
};

std::string Linha(std::size_t n) { return "linha " + std::to_string(n); }
std::string Indice(std::size_t n) { return "índice " + std::to_string(n); }

HRESULT ImportaCsv(CImportacao& imp, std::string_view sConteudo) {
  const QVTabelaSuite& t = imp.Tabela();
  CLeitorCsv leitor(sConteudo);
  std::vector<std::string> campos;
  std::size_t iLinha = 1;
  std::string sErro;
  if (!leitor.Proximo(&campos, &iLinha, &sErro))
    return imp.Recusa(Linha(iLinha), "", sErro.empty() ? "arquivo vazio: falta a linha de cabeçalho" : sErro);
  std::vector<int> mapa;
  std::vector<bool> noCabecalho(t.colunas.size());
  for (std::string& sNome : campos) {
    // "nome, codigo" names codigo: spaces around a name are no part of it.
    sNome.erase(0, sNome.find_first_not_of(" \t"));
    sNome.erase(sNome.find_last_not_of(" \t") + 1);
    HRESULT hr = S_OK;
    const int i = imp.ColunaDoArquivo(Linha(1), sNome, &hr);
    if (i < 0) return hr;
    if (noCabecalho[i]) return imp.Recusa(Linha(1), sNome, "repetida no cabeçalho");
    noCabecalho[i] = true;
    mapa.push_back(i);
  }
  for (std::size_t i = 0; i < t.colunas.size(); ++i)
    if (t.colunas[i].eTipo != T::Empresa && t.colunas[i].Obrigatoria() && !noCabecalho[i])
      return imp.Recusa(Linha(1), t.colunas[i].sNome, "obrigatória e ausente do cabeçalho");
  for (;;) {
    if (!leitor.Proximo(&campos, &iLinha, &sErro)) {
      if (sErro.empty()) return S_OK;
      return imp.Recusa(Linha(iLinha), "", sErro);
    }
    if (campos.size() != mapa.size())
      return imp.Recusa(Linha(iLinha), "",
                        std::to_string(campos.size()) + " campos, e o cabeçalho tem " + std::to_string(mapa.size()));
    std::vector<QVValorSuite> valores = imp.Padroes();
    std::vector<bool> dados(t.colunas.size());
    // A bad row was logged where it was found.
    HRESULT hr;
    for (std::size_t k = 0; k < campos.size(); ++k) {
      QV_CHECK_HR(hr, imp.LeCampo(Linha(iLinha), mapa[k], campos[k], &valores, &dados),
                  E_QVDF_IMPORTACAO_LINHA_INVALIDA);
      if (FAILED(hr)) return hr;
    }
    QV_CHECK_HR(hr, imp.Insere(Linha(iLinha), valores, dados), E_QVDF_IMPORTACAO_LINHA_INVALIDA);
    if (FAILED(hr)) return hr;
  }
}

// Thrown out of the JSON parser's callback to stop it at a bad row.
struct ParadaJson {
  HRESULT hr;
};

HRESULT ImportaJson(CImportacao& imp, std::string_view sConteudo) {
  using E = Json::parse_event_t;
  std::size_t iIndice = 0;
  std::set<std::string> chaves;
  std::string sChave;
  const auto para = [](HRESULT hr) { throw ParadaJson{hr}; };
  // Each element is handled when it ends and dropped from the document: the
  // parser never holds more than one row.
  const Json::parser_callback_t porEvento = [&](int iProfundidade, E evento, Json& valor) -> bool {
    if (iProfundidade == 0) {
      if (evento != E::array_start && evento != E::array_end)
        para(imp.Recusa("início do arquivo", "", "o arquivo JSON deve ser uma lista de objetos, [{...}, ...]"));
      return true;
    }
    if (iProfundidade == 1) {
      if (evento == E::object_start) {
        chaves.clear();
        return true;
      }
      if (evento != E::object_end) para(imp.Recusa(Indice(iIndice), "", "esperado um objeto {\"coluna\": valor, ...}"));
      std::vector<QVValorSuite> valores = imp.Padroes();
      std::vector<bool> dados(imp.Tabela().colunas.size());
      for (const auto& [sNome, v] : valor.items()) {
        HRESULT hr = S_OK;
        const int i = imp.ColunaDoArquivo(Indice(iIndice), sNome, &hr);
        if (i < 0) para(hr);
        std::string sTexto, sMotivo;
        if (!TextoDoJson(imp.Tabela().colunas[i], v, &sTexto, &sMotivo))
          para(imp.Recusa(Indice(iIndice), sNome, sMotivo));
        if (FAILED(hr = imp.LeCampo(Indice(iIndice), i, sTexto, &valores, &dados))) para(hr);
      }
      if (const HRESULT hr = imp.Insere(Indice(iIndice), valores, dados); FAILED(hr)) para(hr);
      ++iIndice;
      return false;
    }
    if (iProfundidade == 2 && evento == E::key) {
      sChave = valor.get<std::string>();
      if (!chaves.insert(sChave).second) para(imp.Recusa(Indice(iIndice), sChave, "repetida no objeto"));
    } else if (iProfundidade == 2 && (evento == E::object_start || evento == E::array_start)) {
      para(imp.Recusa(Indice(iIndice), sChave, "valor composto (objeto ou lista) numa coluna"));
    }
    return true;
  };
  try {
    [[maybe_unused]] const Json resto = Json::parse(sConteudo.begin(), sConteudo.end(), porEvento);
  } catch (const ParadaJson& p) {
    return p.hr;
  } catch (const Json::exception& e) {
    std::string s = e.what();
    if (const std::size_t i = s.find("] "); s.starts_with("[json.exception") && i != std::string::npos)
      s.erase(0, i + 2);
    return imp.Recusa(Indice(iIndice), "", "JSON inválido: " + s);
  }
  return S_OK;
}

// Invalid UTF-8 in a stored text is written as U+FFFD, never thrown at.
std::string Dump(const Json& j) { return j.dump(-1, ' ', false, Json::error_handler_t::replace); }

void SaltaNomes(std::string* p, std::size_t iLargura) {
  if (Largura(*p) < iLargura) p->append(iLargura - Largura(*p), ' ');
}

}  // namespace

// ---- the descriptions' public face ---------------------------------------------

int QVTabelaSuite::Coluna(std::string_view sColuna) const {
  for (std::size_t i = 0; i < colunas.size(); ++i)
    if (sColuna == colunas[i].sNome) return static_cast<int>(i);
  return -1;
}

std::span<const QVTabelaSuite> QVTabelasSuite() { return kTabelas; }

const QVTabelaSuite* QVProcuraTabelaSuite(std::string_view sNome) {
  for (const QVTabelaSuite& t : kTabelas)
    if (sNome == t.sNome) return &t;
  return nullptr;
}

const char* QVNomeTipoColunaSuite(EQVTipoColunaSuite eTipo) {
  switch (eTipo) {
    case T::Texto:
      return "texto";
    case T::Inteiro:
      return "inteiro";
    case T::Ponteiro:
      return "ponteiro";
    case T::Booleano:
      return "booleano";
    case T::Moeda:
      return "moeda";
    case T::Data:
      return "data";
    case T::Mes:
      return "mes";
    case T::DataHora:
      return "datahora";
    case T::Empresa:
      return "empresa";
  }
  return "?";
}

bool QVLeFormatoTabela(std::string_view sTexto, EQVFormatoTabela* pFormato) {
  if (QVIguaisSemCaixa(sTexto, "csv"))
    *pFormato = EQVFormatoTabela::Csv;
  else if (QVIguaisSemCaixa(sTexto, "json"))
    *pFormato = EQVFormatoTabela::Json;
  else
    return false;
  return true;
}

bool QVFormatoDoArquivo(std::string_view sCaminho, EQVFormatoTabela* pFormato) {
  const std::size_t iPonto = sCaminho.find_last_of("./");
  return iPonto != std::string_view::npos && sCaminho[iPonto] == '.' &&
         QVLeFormatoTabela(sCaminho.substr(iPonto + 1), pFormato);
}

bool QVLeCampoSuite(const QVColunaSuite& c, std::string_view s, QVValorSuite* pValor, std::string* pMotivo) {
  if (s.empty()) {
    if (c.sPadrao != nullptr && *c.sPadrao != '\0') return QVLeCampoSuite(c, c.sPadrao, pValor, pMotivo);
    if (c.sPadrao == nullptr) {
      if ((c.fOpcoes & kQVColunaNula) == 0) return Falso(pMotivo, "obrigatória e vazia");
      *pValor = std::monostate{};
    } else if (c.eTipo == T::Texto) {
      *pValor = std::string();
    } else {
      *pValor = std::int64_t{0};
    }
    return true;
  }
  std::int64_t v = 0;
  switch (c.eTipo) {
    case T::Texto:
      if (!Utf8Valido(s)) return Falso(pMotivo, "texto que não é UTF-8 válido");
      if (c.sValores != nullptr) {
        const auto valores = Divide(c.sValores, '|');
        if (std::find(valores.begin(), valores.end(), s) == valores.end())
          return Falso(pMotivo, "valor " + Cita(s) + " não aceito (valores: " + c.sValores + ")");
      }
      *pValor = std::string(s);
      return true;
    case T::Inteiro:
    case T::Ponteiro:
      if (!LeInteiro(s, &v))
        return Falso(pMotivo, (c.eTipo == T::Inteiro ? "número inteiro inválido: " : "ponteiro inválido: ") + Cita(s));
      if (v == 0 && (c.fOpcoes & kQVColunaNula) != 0 && c.iMinimo <= 0) {
        *pValor = std::monostate{};
        return true;
      }
      if (v < c.iMinimo || v > c.iMaximo)
        return Falso(pMotivo, std::to_string(v) + " fora do intervalo de " + std::to_string(c.iMinimo) + " a " +
                                  std::to_string(c.iMaximo));
      *pValor = v;
      return true;
    case T::Booleano: {
      static constexpr std::pair<const char*, int> kLogicos[] = {
          {"1", 1}, {"0", 0}, {"sim", 1}, {"não", 0}, {"nao", 0}, {"s", 1}, {"n", 0}, {"true", 1}, {"false", 0}};
      for (const auto& [sTexto, iValor] : kLogicos)
        if (QVIguaisSemCaixa(s, sTexto)) {
          *pValor = std::int64_t{iValor};
          return true;
        }
      return Falso(pMotivo, "valor lógico inválido: " + Cita(s) + " (use 1 ou 0, sim ou não, S ou N, true ou false)");
    }
    case T::Moeda:
      if (!MilharesAgrupados(s) || !QVMoedaLe(s, &v))
        return Falso(pMotivo, "valor monetário inválido: " + Cita(s) + " (use 1.234,56)");
      *pValor = v;
      return true;
    case T::Data: {
      std::int64_t a = 0, m = 0, d = 0;
      const bool bForma = s.size() == 10 && s[4] == '-' && s[7] == '-' && Digitos(s.substr(0, 4)) &&
                          Digitos(s.substr(5, 2)) && Digitos(s.substr(8, 2)) && LeInteiro(s.substr(0, 4), &a) &&
                          LeInteiro(s.substr(5, 2), &m) && LeInteiro(s.substr(8, 2), &d);
      const std::uint32_t dia = bForma ? QVDia(static_cast<int>(a), static_cast<int>(m), static_cast<int>(d)) : 0;
      if (dia == 0) return Falso(pMotivo, "data inválida: " + Cita(s) + " (use AAAA-MM-DD)");
      *pValor = std::int64_t{dia};
      return true;
    }
    case T::Mes: {
      std::int64_t a = 0, m = 0;
      const bool bForma = s.size() == 7 && s[4] == '-' && Digitos(s.substr(0, 4)) && Digitos(s.substr(5, 2)) &&
                          LeInteiro(s.substr(0, 4), &a) && LeInteiro(s.substr(5, 2), &m) && a >= 100;
      const std::uint16_t iMA = bForma ? QVMesAno(static_cast<int>(a), static_cast<int>(m)) : 0;
      if (iMA == 0) return Falso(pMotivo, "mês inválido: " + Cita(s) + " (use AAAA-MM)");
      *pValor = std::int64_t{iMA};
      return true;
    }
    case T::DataHora:
      return Falso(pMotivo, "coluna somente de leitura");
    case T::Empresa:
      return Falso(pMotivo, "a empresa vem de --empresa, não do arquivo");
  }
  return Falso(pMotivo, "tipo de coluna desconhecido");
}

HRESULT QVEmpresaDaTabela(CQVBancoSuite& banco, const QVTabelaSuite& t, std::string_view sEmpresa,
                          std::uint32_t* plEmpresa, std::string* pErro) {
  if (plEmpresa == nullptr) return E_POINTER;
  *plEmpresa = 0;
  if (!t.PorEmpresa()) {
    if (sEmpresa.empty()) return S_OK;
    return Falha(QV_LOCAL, "t.PorEmpresa()", E_INVALIDARG,
                 std::string("a tabela ") + t.sNome + " é de todas as empresas: não se informa --empresa", pErro);
  }
  auto trava = banco.Trava();
  std::int64_t iQuantas = 0, iUnica = 0, iNomeada = 0;
  QV_CHECK(Percorre(banco, "SELECT ponteiro, nome FROM empresas ORDER BY ponteiro", std::nullopt,
                    [&](const CQVComandoSuite& cmd) {
                      ++iQuantas;
                      iUnica = cmd.Inteiro(0);
                      if (iNomeada == 0 && !sEmpresa.empty() && QVIguaisSemCaixa(cmd.Texto(1), sEmpresa))
                        iNomeada = cmd.Inteiro(0);
                      return S_OK;
                    }));
  if (!sEmpresa.empty() && iNomeada == 0)
    return Falha(QV_LOCAL, "QVIguaisSemCaixa(cmd.Texto(1), sEmpresa)", E_QVDF_EMPRESA_NAO_CADASTRADA,
                 "empresa não cadastrada: " + Cita(sEmpresa), pErro);
  if (sEmpresa.empty() && iQuantas == 0)
    return Falha(QV_LOCAL, "iQuantas == 0", E_QVDF_EMPRESA_NAO_CADASTRADA,
                 "nenhuma empresa cadastrada (importe empresas, ou crie a de exemplo com zelkorin suite init --sample)",
                 pErro);
  if (sEmpresa.empty() && iQuantas > 1)
    return Falha(QV_LOCAL, "iQuantas > 1", E_INVALIDARG,
                 std::string("a tabela ") + t.sNome + " é por empresa e há " + std::to_string(iQuantas) +
                     " empresas: informe --empresa",
                 pErro);
  *plEmpresa = static_cast<std::uint32_t>(sEmpresa.empty() ? iUnica : iNomeada);
  return S_OK;
}

HRESULT QVLeArquivoImportacao(const std::string& sCaminho, std::string* pConteudo, std::string* pErro) {
  if (pConteudo == nullptr) return E_POINTER;
  pConteudo->clear();
  auto f = QVCreateOsFile();
  std::uint64_t uiTamanho = 0;
  if (!f->Open(sCaminho, QVFILE_MODE_READ | QVFILE_SHARE_DENY_NONE | QVFILE_MODE_NO_TRUNCATE) ||
      !f->GetLength(&uiTamanho))
    return Falha(QV_LOCAL, "f->Open(sCaminho, QVFILE_MODE_READ | QVFILE_SHARE_DENY_NONE | QVFILE_MODE_NO_TRUNCATE)",
                 HRESULT_FROM_WIN32(f->LastError()), "não foi possível ler " + sCaminho, pErro,
                 {{"sCaminho", sCaminho}});
  if (uiTamanho > kQVTamanhoMaximoImportacao)
    return Falha(QV_LOCAL, "uiTamanho > kQVTamanhoMaximoImportacao", HRESULT_FROM_WIN32(ERROR_INVALID_DATA),
                 sCaminho + " tem " + std::to_string(uiTamanho) +
                     " bytes; uma importação lê no máximo 64 MiB (divida o arquivo)",
                 pErro, {{"sCaminho", sCaminho}});
  pConteudo->resize(static_cast<std::size_t>(uiTamanho));
  std::size_t iLido = 0;
  while (iLido < pConteudo->size()) {
    std::size_t n = 0;
    if (!f->Read(pConteudo->data() + iLido, pConteudo->size() - iLido, &n))
      return Falha(QV_LOCAL, "f->Read(pConteudo->data() + iLido, pConteudo->size() - iLido, &n)",
                   HRESULT_FROM_WIN32(f->LastError()), "não foi possível ler " + sCaminho, pErro,
                   {{"sCaminho", sCaminho}});
    if (n == 0) break;  // shorter than when measured: what is there is the file
    iLido += n;
  }
  pConteudo->resize(iLido);
  return S_OK;
}

HRESULT QVImportaTabela(CQVBancoSuite& banco, const QVTabelaSuite& t, std::uint32_t lEmpresa,
                        std::string_view sConteudo, EQVFormatoTabela eFormato, std::size_t* pLinhas,
                        std::string* pErro) {
  if (pLinhas != nullptr) *pLinhas = 0;
  if (t.bSomenteLeitura)
    return Falha(QV_LOCAL, "t.bSomenteLeitura", E_INVALIDARG,
                 std::string("a tabela ") + t.sNome + " é somente de leitura: o servidor a escreve", pErro);
  if (t.PorEmpresa() && lEmpresa == 0)
    return Falha(QV_LOCAL, "lEmpresa == 0", E_INVALIDARG,
                 std::string("a tabela ") + t.sNome + " é por empresa: falta a empresa", pErro);
  if (sConteudo.size() > kQVTamanhoMaximoImportacao)
    return Falha(QV_LOCAL, "sConteudo.size() > kQVTamanhoMaximoImportacao", HRESULT_FROM_WIN32(ERROR_INVALID_DATA),
                 "uma importação lê no máximo 64 MiB", pErro);
  CImportacao imp(banco, t, lEmpresa, pErro);
  const auto importa = [&] {
    return eFormato == EQVFormatoTabela::Csv ? ImportaCsv(imp, sConteudo) : ImportaJson(imp, sConteudo);
  };
  // A bad row was logged where it was found, with its line.
  HRESULT hr;
  QV_CHECK_HR(hr, banco.Transacao(importa), E_QVDF_IMPORTACAO_LINHA_INVALIDA);
  if (FAILED(hr)) return hr;
  if (pLinhas != nullptr) *pLinhas = imp.Linhas();
  return S_OK;
}

HRESULT QVExportaTabela(CQVBancoSuite& banco, const QVTabelaSuite& t, std::uint32_t lEmpresa, EQVFormatoTabela eFormato,
                        const QVSaidaTabela& saida, std::size_t* pLinhas) {
  const std::vector<int> colunas = ColunasVisiveis(t);
  const bool bCsv = eFormato == EQVFormatoTabela::Csv;
  auto trava = banco.Trava();
  if (bCsv) {
    std::string sCabecalho;
    for (std::size_t k = 0; k < colunas.size(); ++k)
      sCabecalho += (k ? "," : "") + std::string(t.colunas[colunas[k]].sNome);
    QV_CHECK(saida(sCabecalho + "\r\n"));
  } else {
    QV_CHECK(saida("["));
  }
  std::size_t n = 0;
  QV_CHECK(Percorre(
      banco, SqlSelecao(t, colunas, t.sEscopo, t.sOrdem), Escopo(t, lEmpresa), [&](const CQVComandoSuite& cmd) {
        std::string s;
        if (bCsv) {
          for (std::size_t k = 0; k < colunas.size(); ++k)
            s += (k ? "," : "") + CampoCsv(CampoTexto(t.colunas[colunas[k]], cmd, static_cast<int>(k)));
          s += "\r\n";
        } else {
          Json linha = Json::object();
          for (std::size_t k = 0; k < colunas.size(); ++k)
            linha[t.colunas[colunas[k]].sNome] = CampoJson(t.colunas[colunas[k]], cmd, static_cast<int>(k));
          s = (n ? ",\n" : "\n") + Dump(linha);
        }
        ++n;
        return saida(s);
      }));
  if (!bCsv) QV_CHECK(saida(n ? "\n]\n" : "]\n"));
  if (pLinhas != nullptr) *pLinhas = n;
  return S_OK;
}

HRESULT QVListaTabela(CQVBancoSuite& banco, const QVTabelaSuite& t, std::uint32_t lEmpresa,
                      const QVSaidaTabela& saida) {
  constexpr std::size_t kLarguraMaxima = 40;
  const std::vector<int> colunas = ColunasVisiveis(t);
  const std::string sql = SqlSelecao(t, colunas, t.sEscopo, t.sOrdem);
  auto trava = banco.Trava();
  // Two passes over the rows, never all of them in memory: the widths, then
  // the lines.
  std::vector<std::size_t> larguras;
  for (int i : colunas) larguras.push_back(Largura(t.colunas[i].sNome));
  const auto campo = [&](const CQVComandoSuite& cmd, std::size_t k) {
    return NumaLinha(CampoTexto(t.colunas[colunas[k]], cmd, static_cast<int>(k)), kLarguraMaxima);
  };
  QV_CHECK(Percorre(banco, sql, Escopo(t, lEmpresa), [&](const CQVComandoSuite& cmd) {
    for (std::size_t k = 0; k < colunas.size(); ++k) larguras[k] = std::max(larguras[k], Largura(campo(cmd, k)));
    return S_OK;
  }));
  const auto linha = [&](const std::function<std::string(std::size_t)>& texto) {
    std::string s;
    for (std::size_t k = 0; k < colunas.size(); ++k) {
      std::string v = texto(k);
      const std::size_t w = Largura(v);
      const std::string espacos(w < larguras[k] ? larguras[k] - w : 0, ' ');
      s += (k ? "  " : "") +
           (EhNumerica(t.colunas[colunas[k]]) ? espacos + v : v + (k + 1 < colunas.size() ? espacos : ""));
    }
    return s + "\n";
  };
  QV_CHECK(saida(linha([&](std::size_t k) { return std::string(t.colunas[colunas[k]].sNome); })));
  QV_CHECK(saida(linha([&](std::size_t k) { return std::string(larguras[k], '-'); })));
  std::size_t n = 0;
  QV_CHECK(Percorre(banco, sql, Escopo(t, lEmpresa), [&](const CQVComandoSuite& cmd) {
    ++n;
    return saida(linha([&](std::size_t k) { return campo(cmd, k); }));
  }));
  QV_CHECK(saida(n == 0 ? "(nenhuma linha)\n" : n == 1 ? "(1 linha)\n" : "(" + std::to_string(n) + " linhas)\n"));
  return S_OK;
}

std::span<const QVVisaoSuite> QVVisoesSuite() { return kVisoes; }

const QVVisaoSuite* QVProcuraVisaoSuite(std::string_view sNome) {
  for (const QVVisaoSuite& v : kVisoes)
    if (sNome == v.sNome) return &v;
  return nullptr;
}

HRESULT QVMostraVisao(CQVBancoSuite& banco, const QVVisaoSuite& visao, std::uint32_t lEmpresa, bool bJson,
                      const QVSaidaTabela& saida) {
  const QVTabelaSuite* pTabela = QVProcuraTabelaSuite(visao.sTabela);
  const QVTabelaSuite* pDetalhe = visao.sDetalhe != nullptr ? QVProcuraTabelaSuite(visao.sDetalhe) : nullptr;
  if (pTabela == nullptr || (visao.sDetalhe != nullptr && pDetalhe == nullptr)) QV_RETURN(E_UNEXPECTED);
  const std::vector<int> colunas = ColunasVisiveis(*pTabela);
  const int iPonteiro = pTabela->Coluna("ponteiro");
  std::vector<int> colunasDetalhe;
  std::string sqlDetalhe;
  if (pDetalhe != nullptr) {
    colunasDetalhe = ColunasVisiveis(*pDetalhe);
    sqlDetalhe = SqlSelecao(*pDetalhe, colunasDetalhe, visao.sLigacao, visao.sOrdemDetalhe);
  }
  // "coluna=valor" of the columns with something in them.
  const auto texto = [](const QVTabelaSuite& t, const std::vector<int>& cols, const CQVComandoSuite& cmd) {
    std::string s;
    for (std::size_t k = 0; k < cols.size(); ++k) {
      const std::string v = NumaLinha(CampoTexto(t.colunas[cols[k]], cmd, static_cast<int>(k)));
      if (!v.empty()) s += (s.empty() ? "" : "  ") + std::string(t.colunas[cols[k]].sNome) + "=" + v;
    }
    return s;
  };
  const auto json = [](const QVTabelaSuite& t, const std::vector<int>& cols, const CQVComandoSuite& cmd) {
    Json j = Json::object();
    for (std::size_t k = 0; k < cols.size(); ++k)
      j[t.colunas[cols[k]].sNome] = CampoJson(t.colunas[cols[k]], cmd, static_cast<int>(k));
    return j;
  };
  auto trava = banco.Trava();
  std::size_t n = 0;
  if (bJson) QV_CHECK(saida("["));
  // A row, then each of its details as it is read: a JSON row is written
  // open and closed after its details.
  const auto porLinha = [&](const CQVComandoSuite& cmd) -> HRESULT {
    const std::string sPrefixo = !bJson ? "" : n ? ",\n" : "\n";
    ++n;
    if (!bJson) QV_CHECK(saida(texto(*pTabela, colunas, cmd) + "\n"));
    if (pDetalhe == nullptr) return bJson ? saida(sPrefixo + Dump(json(*pTabela, colunas, cmd))) : S_OK;
    if (bJson) {
      std::string s = Dump(json(*pTabela, colunas, cmd));
      s.pop_back();  // the closing brace: the details follow
      QV_CHECK(saida(sPrefixo + s + ",\"" + visao.sChaveDetalhe + "\":["));
    }
    const auto iColuna = std::find(colunas.begin(), colunas.end(), iPonteiro) - colunas.begin();
    bool bPrimeiro = true;
    const auto porDetalhe = [&](const CQVComandoSuite& d) -> HRESULT {
      const std::string sDetalhe = bJson ? std::string(bPrimeiro ? "" : ",") + Dump(json(*pDetalhe, colunasDetalhe, d))
                                         : "    " + texto(*pDetalhe, colunasDetalhe, d) + "\n";
      bPrimeiro = false;
      return saida(sDetalhe);
    };
    QV_CHECK(Percorre(banco, sqlDetalhe, cmd.Inteiro(static_cast<int>(iColuna)), porDetalhe));
    return bJson ? saida("]}") : S_OK;
  };
  QV_CHECK(Percorre(banco, SqlSelecao(*pTabela, colunas, pTabela->sEscopo, visao.sOrdem), Escopo(*pTabela, lEmpresa),
                    porLinha));
  if (bJson)
    QV_CHECK(saida(n ? "\n]\n" : "]\n"));
  else if (n == 0)
    QV_CHECK(saida("(nenhuma linha)\n"));
  return S_OK;
}

HRESULT QVDescreveTabelas(bool bJson, const QVSaidaTabela& saida) {
  Json todas = Json::array();
  std::string s;
  for (const QVTabelaSuite& t : kTabelas) {
    Json colunas = Json::array();
    s += std::string(t.sNome) + ": " + (t.bSomenteLeitura ? "somente leitura" : "importável") +
         (t.PorEmpresa() ? ", por empresa" : ", de todas as empresas") + "\n";
    for (const QVColunaSuite& c : t.colunas) {
      std::string sNota;
      const auto nota = [&](const std::string& n) { sNota += (sNota.empty() ? "" : "; ") + n; };
      if (c.eTipo == T::Empresa)
        nota("de --empresa");
      else if (c.Obrigatoria())
        nota("obrigatória");
      else if (c.sPadrao == nullptr)
        nota(c.iMinimo > 0 ? "vazio: o próximo ponteiro livre" : "vazio: nenhum");
      else if (*c.sPadrao != '\0')
        nota(std::string("padrão ") + c.sPadrao);
      if (c.sReferencia != nullptr) nota(std::string("aponta ") + c.sReferencia);
      if (c.sValores != nullptr) nota(std::string("valores ") + c.sValores);
      if (c.eTipo == T::Inteiro && c.iMinimo != std::numeric_limits<std::int64_t>::min())
        nota("de " + std::to_string(c.iMinimo) + " a " + std::to_string(c.iMaximo));
      std::string sLinha = "  " + std::string(c.sNome);
      SaltaNomes(&sLinha, 32);
      sLinha += QVNomeTipoColunaSuite(c.eTipo);
      if (!sNota.empty()) SaltaNomes(&sLinha, 43);
      s += sLinha + sNota + "\n";
      Json jc = {{"nome", c.sNome}, {"tipo", QVNomeTipoColunaSuite(c.eTipo)}, {"obrigatoria", c.Obrigatoria()}};
      jc["padrao"] = c.sPadrao != nullptr ? Json(c.sPadrao) : Json(nullptr);
      if (c.sReferencia != nullptr) jc["referencia"] = c.sReferencia;
      if (c.sValores != nullptr) jc["valores"] = c.sValores;
      colunas.push_back(std::move(jc));
    }
    todas.push_back({{"tabela", t.sNome},
                     {"importavel", !t.bSomenteLeitura},
                     {"porEmpresa", t.PorEmpresa()},
                     {"colunas", std::move(colunas)}});
  }
  QV_CHECK(saida(bJson ? todas.dump(2) + "\n" : s));
  return S_OK;
}
