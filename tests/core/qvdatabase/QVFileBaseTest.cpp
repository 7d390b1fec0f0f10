// The header block: creation, validation, updates, the machine switch.
#include "core/qvdatabase/QVFileBase.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <filesystem>

#include "core/qvdatabase/CQVDataBase.h"
#include "core/qvdatabase/QVFile.h"
#include "core/qvdatabase/QVFileCopia.h"
#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVCrc64.h"
#include "platform/QVMachineSettings.h"
#include "platform/QVSystemInfo.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "tests/support/QVTestSupport.h"
#include "tests/support/QVTesteArquivos.h"

namespace {

class QVFileBaseTest : public ::testing::Test {
 protected:
  void SetUp() override {
    m_Dir = QVTesteNovoDiretorio("base");
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

  std::size_t LinhasCom(const std::string& trecho) {
    std::size_t n = 0;
    for (const std::string& l : QVTesteLinhasErro()) n += l.find(trecho) != std::string::npos;
    return n;
  }

  std::string m_Dir;
  QVUInt m_Seek = 0;
};

constexpr auto kCria = EQVDataBase_ModoAbertura::eModoLeituraGravacaoCriacao;
constexpr auto kGrava = EQVDataBase_ModoAbertura::eModoLeituraGravacao;
constexpr auto kLe = EQVDataBase_ModoAbertura::eModoLeitura;

}  // namespace

TEST_F(QVFileBaseTest, ArquivoVazioGanhaOBlocoDe240Bytes) {
  ASSERT_EQ(Abre("GEATPRJ.dat", kCria), S_OK);
  EXPECT_EQ(m_Seek, 240u);
  const std::string b = QVTesteBytes(Caminho("GEATPRJ.dat"));
  ASSERT_EQ(b.size(), 240u);
  QVPreambuloArquivo p;
  std::memcpy(&p, b.data(), sizeof p);
  EXPECT_EQ(p.usVersaoCabecalho, 1);
  EXPECT_EQ(p.uiVerificacao1, QVCrc64(b.data(), 2));
  EXPECT_EQ(p.uiVerificacao2, QVCrc64(b.data() + 8, 8));
  const QVCabecalhoArquivo c = QVTesteLeCabecalho(Caminho("GEATPRJ.dat"));
  EXPECT_EQ(c.uiTamanhoCabecalho, 216u);
  EXPECT_EQ(c.uiTamanhoDados, 0u);
  EXPECT_EQ(c.usVersaoArquivo, 1);
  EXPECT_EQ(c.usVersaoSistemaCriacao, 118);
  EXPECT_EQ(c.usVersaoSistemaAtualizacao, 118);
  EXPECT_EQ(c.uiNumeroSessao, 1234u);
  EXPECT_EQ(c.ulUsuario, 7u);
  EXPECT_STREQ(c.szNomeArquivo, "GEATPRJ.dat");
  EXPECT_STREQ(c.szEmpresa, "EMPRESA_TESTE");
  EXPECT_EQ(std::string(c.szComputador), QVComputerName());
  EXPECT_EQ(c.iCriacao, c.iCriacaoCopia);
  EXPECT_NE(c.iCriacao, 0);
  EXPECT_EQ(c.uiVerificacaoCabecalho, QVCrc64(&c, 208));
}

TEST_F(QVFileBaseTest, PreambuloInvalidoEhArquivoSemCabecalho) {
  // Shorter than 24 bytes: no header; data from offset 0.
  QVTesteGravaBytes(Caminho("CURTO.dat"), "0123456789");
  ASSERT_EQ(Abre("CURTO.dat", kGrava), S_OK);
  EXPECT_EQ(QVTesteBytes(Caminho("CURTO.dat")).substr(240), "0123456789");
  // A preamble whose check does not match is legacy data too.
  std::string b = QVTesteBytes(Caminho("CURTO.dat"));
  b[8] ^= 1;
  QVTesteGravaBytes(Caminho("PREAMBULO.dat"), b);
  ASSERT_EQ(Abre("PREAMBULO.dat", kGrava), S_OK);
  EXPECT_EQ(QVTesteBytes(Caminho("PREAMBULO.dat")).substr(240), b);
}

TEST_F(QVFileBaseTest, CadaFalhaDeValidacaoRecusaEDeixaOArquivoIntacto) {
  ASSERT_EQ(Abre("BOM.dat", kCria), S_OK);
  auto reg = QVTesteRegistro(1);
  std::string bom = QVTesteBytes(Caminho("BOM.dat")) + std::string(reinterpret_cast<char*>(&reg), sizeof reg);
  QVTesteGravaBytes(Caminho("BOM.dat"), bom);
  QVTesteAlteraCabecalho(Caminho("BOM.dat"), [](QVCabecalhoArquivo& c) { c.uiTamanhoDados = 32; });
  bom = QVTesteBytes(Caminho("BOM.dat"));
  ASSERT_EQ(Abre("BOM.dat", kGrava), S_OK);

  struct Caso {
    const char* nome;
    std::function<void(std::string&)> estraga;
    HRESULT esperado;
  };
  auto cabecalho = [](std::function<void(QVCabecalhoArquivo&)> f, bool crc = true) {
    return [f, crc](std::string& b) {
      QVCabecalhoArquivo c;
      std::memcpy(&c, b.data() + 24, sizeof c);
      f(c);
      if (crc) c.uiVerificacaoCabecalho = QVCrc64(&c, 208);
      std::memcpy(b.data() + 24, &c, sizeof c);
    };
  };
  const Caso casos[] = {
      {"VERSAO.dat",
       [](std::string& b) {
         b[0] = 2;  // version 2, with a preamble that is still consistent
         const std::uint64_t c1 = QVCrc64(b.data(), 2);
         std::memcpy(b.data() + 8, &c1, 8);
         const std::uint64_t c2 = QVCrc64(b.data() + 8, 8);
         std::memcpy(b.data() + 16, &c2, 8);
       },
       E_QVCR_VERSAO_CABECALHO_SUPERIOR_VERSAO_SISTEMA},
      {"TAMCAB.dat", cabecalho([](auto& c) { c.uiTamanhoCabecalho = 215; }), E_QVCR_TAMANHO_CABECALHO_NAO_CONFERE},
      {"CRC.dat", cabecalho([](auto& c) { c.ulUsuario ^= 1; }, false), E_QVCR_CRC_CABECALHO_NAO_CONFERE},
      {"APENDICE.dat", [](std::string& b) { b += "x"; }, E_QVCR_TAMANHO_ARQUIVO_NAO_CONFERE},
      {"CRIACAO.dat", cabecalho([](auto& c) { c.usVersaoSistemaCriacao = 119; }),
       E_QVCR_VERSAO_SISTEMA_INFERIOR_VERSAO_CRIACAO_CABECALHO},
      {"MODIFICACAO.dat", cabecalho([](auto& c) { c.usVersaoSistemaAtualizacao = 119; }),
       E_QVCR_VERSAO_SISTEMA_INFERIOR_VERSAO_MODIFICACAO_ARQUIVO},
      {"OUTRONOME.dat", [](std::string&) {}, E_QVCR_NOME_ARQUIVO_NAO_CONFERE},  // BOM.dat under another name
  };
  for (const Caso& caso : casos) {
    std::string b = bom;
    caso.estraga(b);
    QVTesteGravaBytes(Caminho(caso.nome), b);
    QVTesteLimpaLog();
    for (auto modo : {kGrava, kLe}) EXPECT_EQ(Abre(caso.nome, modo), caso.esperado) << caso.nome;
    EXPECT_EQ(QVTesteBytes(Caminho(caso.nome)), b) << caso.nome;  // nothing repaired
    EXPECT_GE(LinhasCom(std::string("m_sNomeArquivo = ") + caso.nome), 2u) << caso.nome;
  }
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

TEST_F(QVFileBaseTest, AberturaSomenteLeituraNaoCriaCabecalho) {
  QVTesteGravaBytes(Caminho("LEGADO.dat"), "abc");
  ASSERT_EQ(Abre("LEGADO.dat", kLe), S_OK);
  EXPECT_EQ(m_Seek, 0u);
  EXPECT_EQ(QVTesteBytes(Caminho("LEGADO.dat")), "abc");
  // A missing file is not created by the other modes.
  EXPECT_EQ(Abre("AUSENTE.dat", kGrava), S_OK);
  EXPECT_FALSE(std::filesystem::exists(Caminho("AUSENTE.dat")));
}

TEST_F(QVFileBaseTest, AtualizacaoDoCabecalho) {
  auto a = Arquivo("ATUAL.dat");
  ASSERT_EQ(a->AbreArquivo(kCria), S_OK);
  const QVCabecalhoArquivo criado = QVTesteLeCabecalho(Caminho("ATUAL.dat"));
  ASSERT_EQ(a->Flush(), S_OK);
  QVCabecalhoArquivo c = QVTesteLeCabecalho(Caminho("ATUAL.dat"));
  EXPECT_EQ(c.uiContadorAtualizacoes, criado.uiContadorAtualizacoes + 1);
  EXPECT_EQ(c.iCriacao, criado.iCriacao);
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
  EXPECT_EQ(c.uiContadorAtualizacoes, 0u);
  EXPECT_EQ(c.usContadorVoltas, 1);
  EXPECT_STREQ(c.szEmpresaAnterior, "OUTRA");
  EXPECT_STREQ(c.szEmpresa, "EMPRESA_TESTE");
  EXPECT_STREQ(c.szComputadorAnterior, "OUTROPC");
  EXPECT_EQ(c.iAlteracaoEmpresa, c.iUltimaAtualizacao);
  EXPECT_EQ(c.iAlteracaoComputador, c.iUltimaAtualizacao);
}

TEST_F(QVFileBaseTest, AtualizacaoAdiadaEscreveOCabecalhoSoNoFinal) {
  CQVDataBase db(QV_GE);
  db.SetDiretorio(m_Dir);
  db.SetAtualizacaoCabecalhoAdiada(true);
  CQVFile<REG_TESTE> arquivo("ADIADO.dat", QV_GE);
  db.AddFile(&arquivo);
  ASSERT_EQ(db.Inicializa(&QVTesteIdentidade()), S_OK);
  QVUInt pos = 0;
  ASSERT_EQ(arquivo.Grava(pos, QVTesteRegistro(1)), S_OK);
  ASSERT_EQ(arquivo.Grava(pos = 0, QVTesteRegistro(2)), S_OK);
  // The data is on disk, the header still says what it said at creation.
  EXPECT_EQ(QVTesteBytes(Caminho("ADIADO.dat")).size(), 240u + 64);
  EXPECT_EQ(QVTesteLeCabecalho(Caminho("ADIADO.dat")).uiTamanhoDados, 0u);
  ASSERT_EQ(db.Finaliza(), S_OK);
  const QVCabecalhoArquivo c = QVTesteLeCabecalho(Caminho("ADIADO.dat"));
  EXPECT_EQ(c.uiTamanhoDados, 64u);
  EXPECT_EQ(c.uiContadorAtualizacoes, 1u);  // written once
}

TEST_F(QVFileBaseTest, VersaoDoArquivoEAtributoSomenteLeitura) {
  auto a = Arquivo("VERSAO.dat");
  ASSERT_EQ(a->GravaVersaoArquivo(3), S_OK);
  EXPECT_EQ(QVTesteLeCabecalho(Caminho("VERSAO.dat")).usVersaoArquivo, 3);
  a.reset();
  ASSERT_EQ(QVSetReadOnly(Caminho("VERSAO.dat"), true), S_OK);
  EXPECT_EQ(Abre("VERSAO.dat", kGrava), HRESULT_FROM_WIN32(ERROR_FILE_READ_ONLY));
  EXPECT_EQ(LinhasCom("m_cause = eQVReadOnly"), 1u);
  EXPECT_EQ(Abre("VERSAO.dat", kLe), S_OK);
  ASSERT_EQ(QVSetReadOnly(Caminho("VERSAO.dat"), false), S_OK);
}
