// The header block: creation, validation, updates, the machine switch.
#include "core/qvdatabase/QVFileBase.h"

#include <cstdio>
#include <cstring>

#include "core/qvdatabase/QVFileCopia.h"
#include "core/qvdatabase/QVVerificacao.h"
#include "df/qvlibex/QVCrc64.h"
#include "platform/QVMachineSettings.h"
#include "platform/QVSystemInfo.h"
#include "tests/support/QVTesteArquivos.h"

namespace {

class QVFileBaseTest : public ::testing::Test {
 protected:
  void SetUp() override {
    QVTesteLimpaLog();
    CQVFileBase::DefineTentativasAbertura(3, 1);
  }
  void TearDown() override {
    std::remove(QVMachineSettingsPath().c_str());
    CQVFileBase::RecarregaChaveCabecalho();
    CQVFileBase::DefineTentativasAbertura(500, 10);
  }

  std::string Caminho(const std::string& nome) const { return m_Dir + "/" + nome; }
  // A plain data file of the directory, initialised with the test identity.
  std::unique_ptr<CQVFileCopia> Arquivo(const std::string& nome) {
    auto a = std::make_unique<CQVFileCopia>(nome, QV_GE);
    a->SetDiretorio(m_Dir);
    EXPECT_EQ(a->Inicializa(&QVTesteIdentidade()), S_OK);
    return a;
  }
  HRESULT Abre(const std::string& nome, EQVDataBase_ModoAbertura modo) {
    auto a = Arquivo(nome);
    const HRESULT hr = a->AbreArquivo(modo);
    m_Seek = a->GetSeekCabecalho();
    return hr;
  }

  std::string m_Dir = QVTesteNovoDiretorio("base");
  QVUInt m_Seek = 0;
};

constexpr auto kCria = EQVDataBase_ModoAbertura::eModoLeituraGravacaoCriacao;
constexpr auto kGrava = EQVDataBase_ModoAbertura::eModoLeituraGravacao;
constexpr auto kLe = EQVDataBase_ModoAbertura::eModoLeitura;

}  // namespace

TEST_F(QVFileBaseTest, ArquivoVazioGanhaOBlocoDe240Bytes) {
  ASSERT_EQ(Abre("GEATPRJ.dat", kCria), S_OK);
  const std::string b = QVTesteBytes(Caminho("GEATPRJ.dat"));
  ASSERT_EQ(b.size(), 240u);
  QVPreambuloArquivo p;
  std::memcpy(&p, b.data(), sizeof p);
  EXPECT_EQ(std::tuple(p.usVersaoCabecalho, p.uiVerificacao1, p.uiVerificacao2),
            std::tuple(std::uint16_t{1}, QVCrc64(b.data(), 2), QVCrc64(b.data() + 8, 8)));
  const QVCabecalhoArquivo c = QVTesteLeCabecalho(Caminho("GEATPRJ.dat"));
  // Sizes, the session and user of the identity, file and system versions.
  EXPECT_EQ(std::tuple(c.uiTamanhoCabecalho, c.uiTamanhoDados, c.uiNumeroSessao, c.ulUsuario),
            std::tuple(216u, 0u, 1234u, 7u));
  EXPECT_EQ(std::tuple(c.usVersaoArquivo, c.usVersaoSistemaCriacao, c.usVersaoSistemaAtualizacao),
            std::tuple(1, 118, 118));
  EXPECT_STREQ(c.szNomeArquivo, "GEATPRJ.dat");
  EXPECT_STREQ(c.szEmpresa, "EMPRESA_TESTE");
  EXPECT_EQ(std::string(c.szComputador), QVComputerName());
  EXPECT_EQ(c.iCriacao, c.iCriacaoCopia);
  EXPECT_NE(c.iCriacao, 0);
  EXPECT_EQ(c.uiVerificacaoCabecalho, QVCrc64(&c, 208));
}

// Data written before headers existed (too short for a preamble, or with a
// preamble whose check fails): an open for writing puts a header in front
// of it, a read-only open reads it from offset 0 and changes nothing. No
// mode but the creating one makes a missing file.
TEST_F(QVFileBaseTest, ArquivoSemCabecalho) {
  ASSERT_EQ(Abre("MODELO.dat", kCria), S_OK);
  std::string preambuloQuebrado = QVTesteBytes(Caminho("MODELO.dat")) + "dados";
  preambuloQuebrado[8] ^= 1;
  const struct {
    const char* nome;
    std::string bytes;
    EQVDataBase_ModoAbertura modo;
    QVUInt seek;
  } casos[] = {{"CURTO.dat", "0123456789", kGrava, 240},
               {"PREAMBULO.dat", preambuloQuebrado, kGrava, 240},
               {"LEGADO.dat", "abc", kLe, 0}};
  for (const auto& c : casos) {
    QVTesteGravaBytes(Caminho(c.nome), c.bytes);
    ASSERT_EQ(Abre(c.nome, c.modo), S_OK) << c.nome;
    EXPECT_EQ(m_Seek, c.seek) << c.nome;
    const std::string b = QVTesteBytes(Caminho(c.nome));
    EXPECT_EQ(b.substr(c.seek), c.bytes) << c.nome;
  }
  for (auto modo : {kGrava, kLe}) EXPECT_EQ(Abre("AUSENTE.dat", modo), S_OK);
  EXPECT_FALSE(std::filesystem::exists(Caminho("AUSENTE.dat")));
}

TEST_F(QVFileBaseTest, CadaFalhaDeValidacaoRecusaEDeixaOArquivoIntacto) {
  ASSERT_EQ(QVTesteAcrescenta(*CQVTestePasta(m_Dir).Registros("BOM.dat"), {1}), S_OK);
  const std::string bom = QVTesteBytes(Caminho("BOM.dat"));
  ASSERT_EQ(Abre("BOM.dat", kGrava), S_OK);

  // Each case puts bytes at a file offset of a good file (one record of
  // data); the preamble's and the header's checks are made to agree again,
  // but where the check itself is the fault.
  const struct {
    const char* nome;
    std::size_t offset;
    std::string bytes;
    bool bCorrigeVerificacoes;
    HRESULT esperado;
  } casos[] = {
      {"VERSAO.dat", 0, "\x02", true, E_QVCR_VERSAO_CABECALHO_SUPERIOR_VERSAO_SISTEMA},
      {"TAMCAB.dat", 64, "\xD7", true, E_QVCR_TAMANHO_CABECALHO_NAO_CONFERE},  // header size 215
      {"CRC.dat", 100, "\x06", false, E_QVCR_CRC_CABECALHO_NAO_CONFERE},       // user 6
      {"CURTO.dat", 73, "\x01", true, E_QVCR_TAMANHO_ARQUIVO_NAO_CONFERE},  // 256 bytes more than there are
      {"CRIACAO.dat", 106, "\x77", true, E_QVCR_VERSAO_SISTEMA_INFERIOR_VERSAO_CRIACAO_CABECALHO},  // 119
      {"MODIFICACAO.dat", 108, "\x77", true, E_QVCR_VERSAO_SISTEMA_INFERIOR_VERSAO_MODIFICACAO_ARQUIVO},
      {"OUTRONOME.dat", 0, "", true, E_QVCR_NOME_ARQUIVO_NAO_CONFERE},  // BOM.dat under another name
  };
  for (const auto& caso : casos) {
    std::string b = bom;
    b.replace(caso.offset, caso.bytes.size(), caso.bytes);
    auto poe = [&](std::size_t offset, std::uint64_t v) { std::memcpy(b.data() + offset, &v, sizeof v); };
    if (caso.bCorrigeVerificacoes) {
      poe(8, QVCrc64(b.data(), 2));
      poe(16, QVCrc64(b.data() + 8, 8));
      poe(232, QVCrc64(b.data() + 24, 208));
    }
    QVTesteGravaBytes(Caminho(caso.nome), b);
    QVTesteLimpaLog();
    for (auto modo : {kGrava, kLe}) EXPECT_EQ(Abre(caso.nome, modo), caso.esperado) << caso.nome;
    EXPECT_EQ(QVTesteBytes(Caminho(caso.nome)), b) << caso.nome;  // nothing repaired
    EXPECT_GE(QVTesteLinhasCom({std::string("m_sNomeArquivo = ") + caso.nome, QVTesteHrNoLog(caso.esperado)}), 2u)
        << caso.nome;
  }
}

// Bytes past the header's data length (a writer killed between its data
// and its header) were never acknowledged: a read-only open reads up to the
// header's length and leaves them, verification reports them, and an open
// for writing cuts them off with one line naming the file.
TEST_F(QVFileBaseTest, EscritaInacabadaAposOCabecalhoEhDescartada) {
  ASSERT_EQ(QVTesteAcrescenta(*CQVTestePasta(m_Dir).Registros("CAUDA.dat"), {1}), S_OK);
  const std::string bom = QVTesteBytes(Caminho("CAUDA.dat"));
  QVTesteGravaBytes(Caminho("CAUDA.dat"), bom + std::string(70, 'x'));
  QVTesteLimpaLog();
  {
    CQVTestePasta leitor(m_Dir, true);
    auto f = leitor.Registros("CAUDA.dat");
    ASSERT_EQ(leitor.m_hr, S_OK);
    EXPECT_EQ(f->GetQtdRegistros(), 1u);
  }
  EXPECT_EQ(QVTesteBytes(Caminho("CAUDA.dat")).size(), bom.size() + 70);
  const QVResultadoVerificacao v = QVVerificaArquivo(Caminho("CAUDA.dat"), EQVTipoConteudo::Registros, sizeof(REG_TESTE));
  EXPECT_EQ(v.hr, S_OK);
  EXPECT_EQ(v.uiQuantidade, 1u);
  EXPECT_EQ(v.uiBytesEscritaInacabada, 70u);
  ASSERT_EQ(QVTesteAcrescenta(*CQVTestePasta(m_Dir).Registros("CAUDA.dat"), {2}), S_OK);
  EXPECT_EQ(CQVTestePasta(m_Dir).Codigos("CAUDA.dat"), (std::vector<std::uint32_t>{1, 2}));
  EXPECT_EQ(QVTesteLinhasCom({"m_sNomeArquivo = CAUDA.dat", "inacabada"}), 1u);
}

TEST_F(QVFileBaseTest, NomeComparadoSemCaixaNosUltimos23Caracteres) {
  ASSERT_EQ(Abre("GEATTEC2202007.DAT", kCria), S_OK);
  // Only the letter case changed: the open renames it back and accepts it.
  std::filesystem::rename(Caminho("GEATTEC2202007.DAT"), Caminho("geattec2202007.dat"));
  ASSERT_EQ(Abre("GEATTEC2202007.DAT", kGrava), S_OK);
  EXPECT_TRUE(std::filesystem::exists(Caminho("GEATTEC2202007.DAT")));
  EXPECT_FALSE(std::filesystem::exists(Caminho("geattec2202007.dat")));

  const std::string longo = "ARQUIVO_COM_NOME_MUITO_LONGO_2020.dat";  // 37 characters
  ASSERT_EQ(Abre(longo, kCria), S_OK);
  EXPECT_EQ(std::string(QVTesteLeCabecalho(Caminho(longo)).szNomeArquivo), longo.substr(longo.size() - 23));
  // Another name that ends with the same 23 characters passes the check.
  std::filesystem::copy_file(Caminho(longo), Caminho("X" + longo));
  EXPECT_EQ(Abre("X" + longo, kGrava), S_OK);
}

TEST_F(QVFileBaseTest, ChaveDaMaquinaDesligaOsCabecalhos) {
  ASSERT_EQ(Abre("COMCAB.dat", kCria), S_OK);
  QVTesteDefineRegistro(R"({"SOFTWARE\\Wow6432Node\\Quorvane": {"QVDataBase_DesabilitaCabecalho": 1}})");
  CQVFileBase::RecarregaChaveCabecalho();
  QVTesteGravaBytes(Caminho("SEMCAB.dat"), "dados antigos");
  ASSERT_EQ(Abre("SEMCAB.dat", kGrava), S_OK);
  EXPECT_EQ(m_Seek, 0u);
  EXPECT_EQ(QVTesteBytes(Caminho("SEMCAB.dat")), "dados antigos");
  ASSERT_EQ(Abre("NOVO.dat", kCria), S_OK);
  EXPECT_EQ(QVTesteBytes(Caminho("NOVO.dat")).size(), 0u);
  // Presence is judged from the preamble: a file with a header still has it.
  ASSERT_EQ(Abre("COMCAB.dat", kGrava), S_OK);
  EXPECT_EQ(m_Seek, 240u);

  // Switched back on (the process reads it once; tests make it read again).
  std::remove(QVMachineSettingsPath().c_str());
  CQVFileBase::RecarregaChaveCabecalho();
  ASSERT_EQ(Abre("SEMCAB.dat", kGrava), S_OK);
  EXPECT_EQ(m_Seek, 240u);
}

TEST_F(QVFileBaseTest, AtualizacaoDoCabecalho) {
  auto a = Arquivo("ATUAL.dat");
  ASSERT_EQ(a->AbreArquivo(kCria), S_OK);
  const QVCabecalhoArquivo criado = QVTesteLeCabecalho(Caminho("ATUAL.dat"));
  ASSERT_EQ(a->Flush(), S_OK);
  QVCabecalhoArquivo c = QVTesteLeCabecalho(Caminho("ATUAL.dat"));
  EXPECT_EQ(std::tuple(c.uiContadorAtualizacoes, c.iCriacao),
            std::tuple(criado.uiContadorAtualizacoes + 1, criado.iCriacao));
  EXPECT_GE(c.iUltimaAtualizacao, criado.iUltimaAtualizacao);
  ASSERT_EQ(a->Finaliza(), S_OK);  // without deferral the final flush writes nothing more
  EXPECT_EQ(QVTesteLeCabecalho(Caminho("ATUAL.dat")).uiContadorAtualizacoes, c.uiContadorAtualizacoes);

  // The counter wraps and bumps the wrap counter; another company and
  // computer move to the "previous" fields with their change dates.
  QVTesteAlteraCabecalho(Caminho("ATUAL.dat"), [](QVCabecalhoArquivo& h) {
    h.uiContadorAtualizacoes = ~std::uint64_t{0};
    std::strcpy(h.szEmpresa, "OUTRA");
    std::strcpy(h.szComputador, "OUTROPC");
  });
  a = Arquivo("ATUAL.dat");
  ASSERT_EQ(a->AbreArquivo(kGrava), S_OK);
  ASSERT_EQ(a->Flush(), S_OK);
  c = QVTesteLeCabecalho(Caminho("ATUAL.dat"));
  EXPECT_EQ(std::tuple(c.uiContadorAtualizacoes, c.usContadorVoltas), std::tuple(0u, 1));
  EXPECT_EQ(std::tuple(std::string(c.szEmpresa), std::string(c.szEmpresaAnterior), std::string(c.szComputadorAnterior)),
            std::tuple("EMPRESA_TESTE", "OUTRA", "OUTROPC"));
  EXPECT_EQ(std::tuple(c.iAlteracaoEmpresa, c.iAlteracaoComputador),
            std::tuple(c.iUltimaAtualizacao, c.iUltimaAtualizacao));
}

TEST_F(QVFileBaseTest, VersaoDoArquivoEAtributoSomenteLeitura) {
  ASSERT_EQ(Arquivo("VERSAO.dat")->GravaVersaoArquivo(3), S_OK);
  EXPECT_EQ(QVTesteLeCabecalho(Caminho("VERSAO.dat")).usVersaoArquivo, 3);
  ASSERT_EQ(QVSetReadOnly(Caminho("VERSAO.dat"), true), S_OK);
  EXPECT_EQ(Abre("VERSAO.dat", kGrava), HRESULT_FROM_WIN32(ERROR_FILE_READ_ONLY));
  EXPECT_EQ(QVTesteLinhasCom({"m_cause = eQVReadOnly", QVTesteHrNoLog(HRESULT_FROM_WIN32(ERROR_FILE_READ_ONLY))}), 1u);
  EXPECT_EQ(Abre("VERSAO.dat", kLe), S_OK);
  ASSERT_EQ(QVSetReadOnly(Caminho("VERSAO.dat"), false), S_OK);
}
