// The records' JSON form: the tables against the records and their
// ownership descriptors, round trips of every record kind, the printed form
// of each kind of field, and input that must be refused.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <vector>

#include "ge/zelkorin/json/ZelkorinJson.h"
#include "tests/support/QVTesteRegistros.h"
#include "tests/support/QVTiposRegistro.h"

namespace {

// What a record owns, from its JSON table or from its descriptor, in one
// spelling: "bstr@8 lista@16(0,4,24){...}", by offset.
std::string Posses(const QVJsonRegistro& t, std::uint32_t base = 0);
std::string Posses(const QVDescritorRegistro& d, std::uint32_t base = 0);

std::string Junta(std::map<std::uint32_t, std::string> partes) {
  std::string s;
  for (const auto& [off, p] : partes) s += p + " ";
  return s;
}

std::string Lista(std::uint32_t off, std::uint32_t offContagem, unsigned larg, std::uint32_t tam, bool bTexto,
                  const std::string& dentro) {
  return "lista@" + std::to_string(off) + "(" + std::to_string(offContagem) + "," + std::to_string(larg) + "," +
         std::to_string(tam) + (bTexto ? ",texto" : "") + "){" + dentro + "}";
}

std::string Posses(const QVJsonRegistro& t, std::uint32_t base) {
  std::map<std::uint32_t, std::string> partes;
  for (const QVJsonCampo& c : t.campos) {
    const std::uint32_t off = base + c.offset;
    if (c.tipo == EQVJsonCampo::Bstr) partes[off] = "bstr@" + std::to_string(off);
    if (c.tipo == EQVJsonCampo::Lista)
      partes[off] = Lista(off, base + c.offContagem, c.largContagem, c.elemento().tamanho, false, Posses(c.elemento()));
    if (c.tipo == EQVJsonCampo::TextoPtr || c.tipo == EQVJsonCampo::Bloco)
      partes[off] = Lista(off, base + c.offContagem, c.largContagem, 1, c.tipo == EQVJsonCampo::TextoPtr, "");
    if (c.tipo == EQVJsonCampo::Registro)
      for (std::uint32_t i = 0; i < c.nElementos; ++i) {
        const std::string s = Posses(c.elemento(), off + i * c.elemento().tamanho);
        if (!s.empty()) partes[off + i * c.elemento().tamanho] = s;
      }
  }
  return Junta(partes);
}

std::string Posses(const QVDescritorRegistro& d, std::uint32_t base) {
  std::map<std::uint32_t, std::string> partes;
  for (const QVCampoPonteiro& c : d.campos) {
    const std::uint32_t off = base + c.offset;
    // A reserved string is freed but never printed nor read.
    if (c.tipo == EQVCampoPonteiro::Bstr && !std::string_view(c.nome).ends_with("Filler"))
      partes[off] = "bstr@" + std::to_string(off);
    if (c.tipo == EQVCampoPonteiro::Array)
      partes[off] = Lista(off, base + c.offContagem, c.largContagem, c.tamElemento, c.bTexto, "");
    if (c.tipo == EQVCampoPonteiro::Registros)
      partes[off] = Lista(off, base + c.offContagem, c.largContagem, c.tamElemento, false, Posses(*c.elemento));
    if (c.tipo == EQVCampoPonteiro::Aninhado) partes[off] = Posses(*c.elemento, off);
  }
  return Junta(partes);
}

// A record as the JSON form keeps it: reserved bytes zero, texts ending in
// zeros, in characters of the code page. Everything else prints exactly.
void Normaliza(const QVJsonRegistro& t, std::uint8_t* r) {
  static constexpr char kLetras[] = "aZ09 \xE7\xE3\x80\xC9-";  // ç ã € É
  for (const QVJsonCampo& c : t.campos) {
    std::uint8_t* p = r + c.offset;
    if (c.tipo == EQVJsonCampo::Reservado) {
      if (std::string_view(c.nome).starts_with("bs")) {  // a reserved string the sample made
        BSTR b;
        std::memcpy(&b, p, sizeof b);
        SysFreeString(b);
      }
      std::memset(p, 0, c.tamanho);
    }
    if (c.tipo == EQVJsonCampo::Texto) {
      const std::size_t n = p[0] % c.tamanho;
      for (std::size_t i = 0; i < c.tamanho; ++i) p[i] = i < n ? kLetras[p[i] % (sizeof kLetras - 1)] : 0;
    }
    if (c.tipo == EQVJsonCampo::Registro)
      for (std::uint32_t i = 0; i < c.nElementos; ++i) Normaliza(c.elemento(), p + i * c.elemento().tamanho);
    if (c.tipo == EQVJsonCampo::Lista) {
      std::uint8_t* lista = nullptr;
      std::memcpy(&lista, p, sizeof lista);
      std::uint64_t n = 0;
      std::memcpy(&n, r + c.offContagem, c.largContagem);
      for (std::uint64_t i = 0; lista != nullptr && i < n; ++i)
        Normaliza(c.elemento(), lista + i * c.elemento().tamanho);
    }
  }
}

// Reads j into a zeroed record of table t (freed by its descriptor when it
// has one); the error text, "" when it read.
struct CRegistroLido {
  CRegistroLido(const QVJsonRegistro& t, const QVDescritorRegistro* d, const QVJson& j)
      : m_pDescritor(d), m_Bytes(t.tamanho / 8 + 1) {
    QVErroJson erro;
    std::uint64_t bytes = 0;
    if (FAILED(QVRegistroDeJson(t, j, Dados(), "r", &bytes, &erro))) sErro = erro.Texto();
  }
  ~CRegistroLido() {
    if (m_pDescritor != nullptr) QVLiberaRegistro(*m_pDescritor, Dados());
  }
  std::uint8_t* Dados() { return reinterpret_cast<std::uint8_t*>(m_Bytes.data()); }
  const QVDescritorRegistro* m_pDescritor;
  std::vector<std::uint64_t> m_Bytes;  // zeroed, aligned for any record
  std::string sErro;
};

}  // namespace

// Every record kind is in the tables; each table covers every byte of its
// record once, in order; and each owns exactly what the record's
// descriptor says it owns (a list the JSON form fills that the descriptor
// does not free would leak, and the reverse would not print).
TEST(ZelkorinJson, TabelasConferemComOsDescritores) {
  std::size_t n = 0;
  const auto cobre = [](const QVJsonRegistro& t) {
    std::uint32_t fim = 0;
    for (const QVJsonCampo& c : t.campos) fim = c.offset == fim ? fim + c.tamanho : ~0u;
    return fim == t.tamanho;
  };
#define QV_CONTA(T) \
  ++n;              \
  EXPECT_TRUE(cobre(QVJsonTabela<T>())) << #T;
  QV_REGISTROS_JSON_DONOS(QV_CONTA)
  EXPECT_EQ(n, std::tuple_size_v<QVTodosOsRegistros>);
  QV_REGISTROS_JSON_SIMPLES(QV_CONTA)
#undef QV_CONTA
  QVParaCadaRegistro([]<class T>() {
    const QVJsonRegistro& t = QVJsonTabela<T>();
    SCOPED_TRACE(t.nome);
    EXPECT_EQ(std::string_view(t.nome), QVDescritor<T>().nome);
    EXPECT_EQ(t.tamanho, sizeof(T));
    EXPECT_EQ(Posses(t), Posses(QVDescritor<T>()));
  });
#define QV_NADA_POSSUI(T) EXPECT_EQ(Posses(QVJsonTabela<T>()), "") << #T;
  QV_REGISTROS_JSON_SIMPLES(QV_NADA_POSSUI)
#undef QV_NADA_POSSUI
  // A record printed as a value has one field to print.
  for (const QVJsonRegistro* t : {&QVJsonTabela<_REG_DF_TEXTOPS>(), &QVJsonTabelaU32(), &QVJsonTabelaMeses()})
    EXPECT_EQ(std::count_if(t->campos.begin(), t->campos.end(),
                            [](const QVJsonCampo& c) {
                              return c.tipo != EQVJsonCampo::Contagem && c.tipo != EQVJsonCampo::Reservado;
                            }),
              1);
}

// record -> JSON text -> record gives the same record, deeply, for every
// kind, with everything it can own; and prints the same JSON again.
TEST(ZelkorinJson, CadaTipoIdaEVoltaPorTextoJson) {
  QVParaCadaRegistro([]<class T>() {
    SCOPED_TRACE(QVDescritor<T>().nome);
    for (std::uint32_t semente : {1u, 77u}) {
      T original = Amostra<T>(semente);
      Normaliza(QVJsonTabela<T>(), reinterpret_cast<std::uint8_t*>(&original));
      const QVJson j = QVParaJson(original);
      T volta;
      QVErroJson erro;
      ASSERT_EQ(QVDeJson(QVJson::parse(QVJsonTexto(j)), &volta, "r", &erro), S_OK) << erro.Texto();
      EXPECT_TRUE(QVIguais(original, volta)) << QVJsonTexto(j);
      EXPECT_EQ(QVParaJson(volta), j);
      QVLibera(&original);
      QVLibera(&volta);
    }
  });
#define QV_IDA_E_VOLTA(T)                                                     \
  {                                                                           \
    const QVDescritorRegistro d{#T, sizeof(T), {}};                           \
    T original;                                                               \
    QVTesteAmostra(d, &original, 5);                                          \
    Normaliza(QVJsonTabela<T>(), reinterpret_cast<std::uint8_t*>(&original)); \
    CRegistroLido volta(QVJsonTabela<T>(), nullptr, QVParaJson(original));    \
    EXPECT_EQ(volta.sErro, "") << #T;                                         \
    EXPECT_EQ(std::memcmp(volta.Dados(), &original, sizeof(T)), 0) << #T;     \
  }
  QV_REGISTROS_JSON_SIMPLES(QV_IDA_E_VOLTA)
#undef QV_IDA_E_VOLTA
}

// How each kind of field reads and prints: the other spellings a field
// accepts print in the one form.
TEST(ZelkorinJson, FormaDeCadaTipoDeCampo) {
  struct Caso {
    const QVJsonRegistro& (*tabela)();
    const QVDescritorRegistro& (*descritor)();
    const char* entrada;  // a JSON object
    const char* campo;
    const char* saida;  // the field's JSON
  };
  constexpr auto S = &QVJsonTabela<_REG_SERVICO_ATENDIMENTO_PS>;
  constexpr auto dS = &QVDescritor<_REG_SERVICO_ATENDIMENTO_PS>;
  const Caso casos[] = {
      {S, dS, R"({"vValor": "1234.5"})", "vValor", R"("1234.5000")"},
      {S, dS, R"({"vValor": -0.0001})", "vValor", R"("-0.0001")"},
      {S, dS, R"({"vValor": 12})", "vValor", R"("12.0000")"},
      {S, dS, R"({"vValor": "-922337203685477.5808"})", "vValor", R"("-922337203685477.5808")"},
      {S, dS, R"({"iDataRetorno": "2026-11-23"})", "iDataRetorno", R"("2026-11-23")"},
      {S, dS, R"({"iDataRetorno": 46348})", "iDataRetorno", R"("2026-11-22")"},
      {S, dS, R"({"iDataRetorno": 0})", "iDataRetorno", "null"},
      {S, dS, R"({"iDataRetorno": 4294967295})", "iDataRetorno", "4294967295"},
      {S, dS, R"({"iHoraConclusao": 510})", "iHoraConclusao", R"("08:30")"},
      {S, dS, R"({"iHoraConclusao": "00:00"})", "iHoraConclusao", R"("00:00")"},
      {S, dS, R"({"iHoraConclusao": 65535})", "iHoraConclusao", "65535"},
      {S, dS, R"({"iMaACSGerado": 2147})", "iMaACSGerado", R"("2026-11")"},
      {S, dS, R"({"bCobrar": 1})", "bCobrar", "true"},
      {S, dS, R"({"bCobrar": 2})", "bCobrar", "2"},
      {S, dS, R"({"cSituacao": "A"})", "cSituacao", "65"},
      {S, dS, R"({"cChave": "ação €"})", "cChave", R"("ação €")"},
      {S, dS, R"({"bsComentario": "日本 ok"})", "bsComentario", R"("日本 ok")"},
      {S, dS, R"({"rDMCAcompanhamentoGerado": 18446744073709551615})", "rDMCAcompanhamentoGerado",
       "18446744073709551615"},
      {S, dS, R"({"pSessoes": [{"iHoraInicial": "08:00"}, {}], "iQuantidadeSessao": 2})", "pSessoes",
       R"([{"iHoraInicial":"08:00","iHoraFinal":"00:00"},{"iHoraInicial":"00:00","iHoraFinal":"00:00"}])"},
      {S, dS, R"({"iDataSaida": null, "pSessoes": null})", "pSessoes", "[]"},
      {&QVJsonTabela<IE_CAMPO_DATA_PS>, &QVDescritor<IE_CAMPO_DATA_PS>, R"({"id": "IE_CAMPO_LIVRE_TEXTO_0+3"})", "id",
       R"("IE_CAMPO_LIVRE_TEXTO_0+3")"},
      {&QVJsonTabela<IE_CAMPO_DATA_PS>, &QVDescritor<IE_CAMPO_DATA_PS>, R"({"id": 7})", "id", "7"},
      {&QVJsonTabela<IE_CAMPO_DATA_PS>, &QVDescritor<IE_CAMPO_DATA_PS>, R"({"BinaryData": -2})", "BinaryData",
       R"("feffffffffffffff")"},
      {&QVJsonTabela<_REG_DF_ERROPS>, &QVDescritor<_REG_DF_ERROPS>, R"({"hr": -2147467263})", "hr", R"("0x80004001")"},
      // Trailing all-zero elements of a fixed array are left out.
      {&QVJsonTabela<_REG_FILTRO_ATENDIMENTO_PS>, &QVDescritor<_REG_FILTRO_ATENDIMENTO_PS>,
       R"({"ieInfoPlus": [{}, {"pcTexto": "x"}, {}], "arrMA": ["2026-01", 2147]})", "ieInfoPlus",
       R"([{"BinaryData":"0000000000000000","id":0,"pcTexto":""},{"BinaryData":"0000000000000000","id":0,"pcTexto":"x"}])"},
      {&QVJsonTabela<_REG_FILTRO_ATENDIMENTO_PS>, &QVDescritor<_REG_FILTRO_ATENDIMENTO_PS>,
       R"({"arrMA": ["2026-01", 2147]})", "arrMA", R"(["2026-01","2026-11"])"},
      // A text with its terminating zero, or bytes.
      {&QVJsonTabela<_REG_DF_FUNCAO_GENERICAPS>, &QVDescritor<_REG_DF_FUNCAO_GENERICAPS>,
       R"({"pListaBytes": "{\"a\":1}"})", "pListaBytes", R"("{\"a\":1}")"},
      {&QVJsonTabela<_REG_DF_FUNCAO_GENERICAPS>, &QVDescritor<_REG_DF_FUNCAO_GENERICAPS>,
       R"({"pListaBytes": [104, 105]})", "pListaBytes", "[104,105]"},
      {&QVJsonTabela<_REG_PROJETO_ATENDIMENTO_PS>, &QVDescritor<_REG_PROJETO_ATENDIMENTO_PS>,
       R"({"rNome": "Projeto São João", "rCodigo": ""})", "rNome", R"("Projeto São João")"},
  };
  for (const Caso& c : casos) {
    SCOPED_TRACE(c.entrada);
    CRegistroLido r(c.tabela(), &c.descritor(), QVJson::parse(c.entrada));
    ASSERT_EQ(r.sErro, "");
    EXPECT_EQ(QVJsonTexto(QVJsonDeRegistro(c.tabela(), r.Dados())[c.campo], -1), c.saida);
  }
  // Counts follow their lists; texts count their terminating zero.
  CRegistroLido r(QVJsonTabela<_REG_PROJETO_ATENDIMENTO_PS>(), &QVDescritor<_REG_PROJETO_ATENDIMENTO_PS>(),
                  QVJson::parse(R"({"rNome": "ab"})"));
  const auto& projeto = *reinterpret_cast<const _REG_PROJETO_ATENDIMENTO_PS*>(r.Dados());
  EXPECT_EQ(projeto.rNome.ulQtdBytes, 3u);
  EXPECT_EQ(projeto.rCodigo.pTexto, nullptr);
  // Fillers and counts are not printed.
  const QVJson j = QVParaJson(projeto);
  EXPECT_FALSE(j.contains("szFiller"));
  EXPECT_EQ(j.size(), 7u);
}

// Input that must be refused: each names the place and the reason; what
// was allocated before the failure is freed with the record (a leak shows
// in the sanitizer build).
TEST(ZelkorinJson, EntradaRuimDizOndeEPorque) {
  struct Caso {
    const QVJsonRegistro& (*tabela)();
    const QVDescritorRegistro& (*descritor)();
    std::string entrada;
    const char* erro;  // the start of the message
  };
  constexpr auto S = &QVJsonTabela<_REG_SERVICO_ATENDIMENTO_PS>;
  constexpr auto dS = &QVDescritor<_REG_SERVICO_ATENDIMENTO_PS>;
  const auto lista = [](int n) {
    std::string s = "[{}";
    for (int i = 1; i < n; ++i) s += ",{}";
    return s + "]";
  };
  const Caso casos[] = {
      {S, dS, R"([])", "r: esperado um objeto _REG_SERVICO_ATENDIMENTO_PS, não uma lista"},
      {S, dS, R"({"vValr": 1})", "r.vValr: campo desconhecido em _REG_SERVICO_ATENDIMENTO_PS"},
      {S, dS, R"({"vvalor": 1})", "r.vvalor: campo desconhecido em _REG_SERVICO_ATENDIMENTO_PS (quis dizer vValor?)"},
      {S, dS, R"({"bsFiller": "x"})", "r.bsFiller: campo reservado"},
      {S, dS, R"({"vValor": "12,5"})", "r.vValor: valor monetário inválido: o texto \"12,5\""},
      {S, dS, R"({"vValor": "1.23456"})", "r.vValor: valor monetário inválido"},
      {S, dS, R"({"vValor": "922337203685477.5808"})", "r.vValor: valor monetário inválido"},
      {S, dS, R"({"vValor": "1e3"})", "r.vValor: valor monetário inválido"},
      {S, dS, R"({"vValor": 1.23456})", "r.vValor: número com mais de quatro casas"},
      {S, dS, R"({"vValor": 1e12})", "r.vValor: número com mais de quatro casas ou fora"},
      {S, dS, R"({"vValor": 922337203685478})", "r.vValor: valor monetário fora do intervalo"},
      {S, dS, R"({"vValor": true})", "r.vValor: esperado um valor monetário, não true"},
      {S, dS, R"({"lCodigo": -1})", "r.lCodigo: o valor -1 não cabe em u32 (0 a 4294967295)"},
      {S, dS, R"({"lCodigo": 4294967296})", "r.lCodigo: o valor 4294967296 não cabe em u32"},
      {S, dS, R"({"lCodigo": 1.5})", "r.lCodigo: esperado um número inteiro, não o valor 1.5"},
      {S, dS, R"({"lCodigo": "12"})", "r.lCodigo: esperado um número inteiro, não o texto \"12\""},
      {S, dS, R"({"iDataRetorno": "2026-02-30"})", "r.iDataRetorno: data inválida: o texto \"2026-02-30\""},
      {S, dS, R"({"iDataRetorno": "23/11/2026"})",
       "r.iDataRetorno: data inválida: o texto \"23/11/2026\" (use \"AAAA-MM-DD\""},
      {S, dS, R"({"iHoraConclusao": "24:00"})", "r.iHoraConclusao: hora inválida: o texto \"24:00\" (use \"HH:MM\""},
      {S, dS, R"({"iMaACSGerado": "1800-01"})", "r.iMaACSGerado: mês inválido: o texto \"1800-01\" (use \"AAAA-MM\""},
      {S, dS, R"({"iMaACSGerado": 65536})", "r.iMaACSGerado: o valor 65536 não cabe em u16"},
      {S, dS, R"({"cChave": "0123456789ABC"})", "r.cChave: o texto tem 13 bytes e o campo (char[12]) guarda até 11"},
      {S, dS, R"({"cChave": "日本"})", "r.cChave: o texto tem caracteres fora da página de código"},
      {S, dS, R"({"cChave": "a\u0000b"})", "r.cChave: o texto tem um caractere nulo"},
      {S, dS, R"({"cSituacao": "AB"})", "r.cSituacao: esperado um caractere ou um número de 0 a 255"},
      {S, dS, R"({"cSituacao": 256})", "r.cSituacao: o valor 256 não cabe em u8"},
      {S, dS, R"({"bCobrar": "sim"})", "r.bCobrar: esperado um número inteiro, não o texto \"sim\""},
      {S, dS, R"({"regRetencoes": 5})", "r.regRetencoes: esperado um objeto _REG_RETENCOES_PS, não o valor 5"},
      {S, dS, R"({"pSessoes": {}})", "r.pSessoes: esperada uma lista, não um objeto"},
      {S, dS, R"({"pSessoes": [{}, 3]})", "r.pSessoes[1]: esperado um objeto _REG_SESSAO_ATENDIMENTO_PS"},
      {S, dS, "{\"pSessoes\": " + lista(65536) + "}", "r.pSessoes: a lista tem 65536 elementos; o limite é 65535"},
      {S, dS, R"({"pSessoes": [{}], "iQuantidadeSessao": 2})",
       "r.iQuantidadeSessao: 2 não é o tamanho de pSessoes (1): a contagem vem da lista"},
      {S, dS, R"({"iQuantidadeSessao": 1})", "r.iQuantidadeSessao: 1 não é o tamanho de pSessoes (0)"},
      {S, dS, R"({"pClassificacoes": [{"pGerenciais": [{}, {"vValor": "x"}]}]})",
       "r.pClassificacoes[0].pGerenciais[1].vValor: valor monetário inválido"},
      {S, dS, R"({"regEFD_REINF": {"pRegProcessosRetAdic": [{"lPonteiroProcesso": -3}]}})",
       "r.regEFD_REINF.pRegProcessosRetAdic[0].lPonteiroProcesso: o valor -3 não cabe em u32"},
      {S, dS, "{\"bsComentario\": \"" + std::string((1u << 20) + 1, 'a') + "\"}",
       "r.bsComentario: o texto passa de 1048576 caracteres"},
      {&QVJsonTabela<_REG_LISTA_REGISTROS_PS>, &QVDescritor<_REG_LISTA_REGISTROS_PS>,
       "{\"pRegistros\": " + lista(83000) + "}", "r.pRegistros: o valor passa de 64 MiB"},
      {&QVJsonTabela<_REG_FILTRO_AGENDA_PS>, &QVDescritor<_REG_FILTRO_AGENDA_PS>, R"({"iDataSaida": "2100-01-01"})",
       "r.iDataSaida: o texto \"2100-01-01\" não cabe num dia de 16 bits (até 2079-06-04)"},
      {&QVJsonTabela<_REG_FILTRO_ATENDIMENTO_PS>, &QVDescritor<_REG_FILTRO_ATENDIMENTO_PS>,
       "{\"ieInfoPlus\": " + lista(21) + "}",
       "r.ieInfoPlus: esperada uma lista de até 20 elementos, não uma lista de 21"},
      {&QVJsonTabela<_REG_FILTRO_ATENDIMENTO_PS>, &QVDescritor<_REG_FILTRO_ATENDIMENTO_PS>,
       R"({"ieInfoPlus": [{"pcTexto": "a"}, {"BinaryData": "zz"}]})",
       "r.ieInfoPlus[1].BinaryData: esperados 16 dígitos hexadecimais, não o texto \"zz\""},
      {&QVJsonTabela<_REG_FILTRO_ATENDIMENTO_PS>, &QVDescritor<_REG_FILTRO_ATENDIMENTO_PS>,
       R"({"ieInfoPlus": [{"id": "IE_CAMPO_LIVRE_TEXTO_0+50"}]})",
       "r.ieInfoPlus[0].id: identificador inválido: o texto"},
      {&QVJsonTabela<_REG_FILTRO_ATENDIMENTO_PS>, &QVDescritor<_REG_FILTRO_ATENDIMENTO_PS>,
       R"({"arrlPos": [1, 2], "arrMA": ["2026-13"]})", "r.arrMA[0]: mês inválido: o texto \"2026-13\""},
      {&QVJsonTabela<_REG_DF_ERROPS>, &QVDescritor<_REG_DF_ERROPS>, R"({"hr": "0x123456789"})",
       "r.hr: status inválido: o texto \"0x123456789\" (use \"0x80004001\" ou um número)"},
      {&QVJsonTabela<_REG_DF_ERROPS>, &QVDescritor<_REG_DF_ERROPS>, R"({"hr": 4294967296})",
       "r.hr: o valor 4294967296 não cabe em 32 bits"},
      {&QVJsonTabela<_REG_DF_FUNCAO_GENERICAPS>, &QVDescritor<_REG_DF_FUNCAO_GENERICAPS>,
       R"({"pListaBytes": [1, 256]})", "r.pListaBytes[1]: o valor 256 não cabe em u8"},
      {&QVJsonTabela<_REG_DF_FUNCAO_GENERICAPS>, &QVDescritor<_REG_DF_FUNCAO_GENERICAPS>,
       R"({"pListaBytes": "a\u0000"})", "r.pListaBytes: o texto tem um caractere nulo (dê os bytes"},
      {&QVJsonTabela<_REG_PROJETO_ATENDIMENTO_PS>, &QVDescritor<_REG_PROJETO_ATENDIMENTO_PS>,
       R"({"rCodigo": "A1", "rNome": 5})", "r.rNome: esperado um texto, não o valor 5"},
  };
  for (const Caso& c : casos) {
    SCOPED_TRACE(c.entrada.substr(0, 80));
    CRegistroLido r(c.tabela(), &c.descritor(), QVJson::parse(c.entrada));
    EXPECT_EQ(r.sErro.substr(0, std::strlen(c.erro)), c.erro) << r.sErro;
  }
}
