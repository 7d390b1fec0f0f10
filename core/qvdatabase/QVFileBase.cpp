#include "core/qvdatabase/QVFileBase.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <vector>

#include "core/qvdatabase/CQVDataBase.h"
#include "core/qvdatabase/CQVDataBaseUtil.h"
#include "core/qvdatabase/QVFileCopia.h"
#include "core/qvdatabase/QVFileNameFormat.h"
#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVCrc64.h"
#include "df/qvlibex/QVDatas.h"
#include "df/qvlibex/QVLog.h"
#include "platform/QVClock.h"
#include "platform/QVCodePage.h"
#include "platform/QVMachineSettings.h"
#include "platform/QVSystemInfo.h"

namespace {

std::atomic<int> g_tentativasAbertura{500};
std::atomic<std::uint32_t> g_intervaloAberturaMs{10};
// The machine-wide header switch: -1 not read yet, 0 headers managed,
// 1 management switched off.
std::atomic<int> g_chaveDesabilitaCabecalho{-1};

// Copies of the old content move in pieces of this size while a header is
// added in front of it.
constexpr std::size_t kTamanhoPedacoCopia = 4u << 20;

// The last n bytes of a text (the header keeps the end of long names).
std::string Ultimos(const std::string& texto, std::size_t n) {
  return texto.size() <= n ? texto : texto.substr(texto.size() - n);
}

template <std::size_t N>
void CopiaTexto(char (&campo)[N], const std::string& texto) {
  std::memset(campo, 0, N);
  std::memcpy(campo, texto.data(), std::min(texto.size(), N - 1));
}

std::string NomeBase(const std::string& path) { return path.substr(path.find_last_of('/') + 1); }

}  // namespace

const char* QVNomeCausaArquivo(int iCausa) {
  switch (iCausa) {
    case CFileException::endOfFile: return "eEndOfFile";
    case CFileException::badSeek: return "eBadSeek";
    case CFileException::hardIO: return "eHardIO";
    case CFileException::fileNotFound: return "eFileNotFound";
    case CFileException::badPath: return "eBadPath";
    case CFileException::accessDenied: return "eAccessDenied";
    case CFileException::invalidFile: return "eInvalidFile";
    case CFileException::directoryFull: return "eDirectoryFull";
    case CFileException::tooManyOpenFiles: return "eTooManyOpenFiles";
    case CFileException::sharingViolation: return "eSharingViolation";
    case CFileException::lockViolation: return "eLockViolation";
    case CFileException::diskFull: return "eDiskFull";
    case kQVCausaSomenteLeitura: return "eQVReadOnly";
    default: return "eQVGenericError";
  }
}

int QVCausaDoErroArquivo(std::uint32_t ulErro) {
  switch (ulErro) {
    case ERROR_FILE_NOT_FOUND: return CFileException::fileNotFound;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_FILENAME_EXCED_RANGE: return CFileException::badPath;
    case ERROR_TOO_MANY_OPEN_FILES: return CFileException::tooManyOpenFiles;
    case ERROR_ACCESS_DENIED: return CFileException::accessDenied;
    case ERROR_INVALID_HANDLE: return CFileException::invalidFile;
    case ERROR_SHARING_VIOLATION: return CFileException::sharingViolation;
    case ERROR_LOCK_VIOLATION: return CFileException::lockViolation;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL: return CFileException::diskFull;
    case ERROR_HANDLE_EOF: return CFileException::endOfFile;
    case ERROR_SEEK:
    case ERROR_NEGATIVE_SEEK: return CFileException::badSeek;
    case ERROR_WRITE_FAULT:
    case ERROR_READ_FAULT:
    case ERROR_GEN_FAILURE: return CFileException::hardIO;
    case ERROR_WRITE_PROTECT:
    case ERROR_FILE_READ_ONLY: return kQVCausaSomenteLeitura;
    default: return kQVCausaErroGenerico;
  }
}

namespace {

// The status of a file exception: the operating system's error in status
// form, or, when it gave none, the error that stands for the cause.
HRESULT StatusDaExcecao(const CFileException& ex) {
  if (ex.m_lOsError != 0) return HRESULT_FROM_WIN32(ex.m_lOsError);
  switch (ex.m_cause) {
    case CFileException::endOfFile: return HRESULT_FROM_WIN32(ERROR_HANDLE_EOF);
    case CFileException::badSeek: return HRESULT_FROM_WIN32(ERROR_SEEK);
    case CFileException::hardIO: return HRESULT_FROM_WIN32(ERROR_GEN_FAILURE);
    case CFileException::fileNotFound: return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
    case CFileException::badPath: return HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND);
    case CFileException::accessDenied: return HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED);
    case CFileException::invalidFile: return HRESULT_FROM_WIN32(ERROR_INVALID_HANDLE);
    case CFileException::tooManyOpenFiles: return HRESULT_FROM_WIN32(ERROR_TOO_MANY_OPEN_FILES);
    case CFileException::sharingViolation: return HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION);
    case CFileException::lockViolation: return HRESULT_FROM_WIN32(ERROR_LOCK_VIOLATION);
    case CFileException::diskFull: return HRESULT_FROM_WIN32(ERROR_DISK_FULL);
    case kQVCausaSomenteLeitura: return HRESULT_FROM_WIN32(ERROR_FILE_READ_ONLY);
    default: return E_FAIL;
  }
}

}  // namespace

CQVFileBase::CQVFileBase(std::string sNomeArquivo, std::uint32_t eModulo)
    : m_sNomeArquivo(std::move(sNomeArquivo)), m_eModulo(eModulo) {
  m_ControleCriacaoArquivos.SetModulo(eModulo);
}

CQVFileBase::~CQVFileBase() {
  if (EstaInicializado()) QV_LOGA(Finaliza());
}

void CQVFileBase::DefineTentativasAbertura(int iTentativas, std::uint32_t ulIntervaloMs) {
  g_tentativasAbertura = std::max(1, iTentativas);
  g_intervaloAberturaMs = ulIntervaloMs;
}

void CQVFileBase::RecarregaChaveCabecalho() { g_chaveDesabilitaCabecalho = -1; }

void CQVFileBase::LogaFalha(const char* metodo, int linha, const char* expressao, HRESULT hr,
                            std::initializer_list<QVParametroLog> extras) const {
  std::vector<QVParametroLog> parametros{{"m_sNomeArquivo", m_sNomeArquivo}};
  parametros.insert(parametros.end(), extras.begin(), extras.end());
  QVLogaFalhaHrEm(NomeClasseLog() + "::" + metodo, FonteLog(), linha, expressao, hr, std::move(parametros));
}

HRESULT CQVFileBase::Inicializa(CQVDataBase* pDataBase) {
  m_pDataBase = pDataBase;
  QV_CHECK_ARQ(CQVInicializador::Inicializa(pDataBase));
  return S_OK;
}

HRESULT CQVFileBase::OnInicializa() {
  QV_CHECK_ARQ(IQVFileBase::OnInicializa());
  QV_CHECK_ARQ(m_ControleCriacaoArquivos.Inicializa(this));
  m_hrDuvida = S_OK;
  m_Retrato = QVFileIdentity{};
  m_uiRetratoContador = 0;
  m_usRetratoVoltas = 0;
  m_bRetratoGarantido = false;
  return S_OK;
}

HRESULT CQVFileBase::OnFinaliza() {
  // The file is closed whatever the flush said; the first failure is kept.
  const HRESULT hrFlush = Flush(true);
  if (FAILED(hrFlush)) LogaFalha(__func__, __LINE__, "Flush(true)", hrFlush);
  FechaArquivo();
  const HRESULT hr = IQVFileBase::OnFinaliza();
  return FAILED(hrFlush) ? hrFlush : hr;
}

void CQVFileBase::SetModulo(std::uint32_t eModulo) {
  m_eModulo = eModulo;
  m_ControleCriacaoArquivos.SetModulo(eModulo);
}

HRESULT CQVFileBase::DesabilitaControleCriacaoArquivos() {
  QV_CHECK_ARQ(m_ControleCriacaoArquivos.DesabilitaControleCriacaoArquivos());
  return S_OK;
}

std::string CQVFileBase::GetDiretorio() const {
  if (!m_sDiretorio.empty()) return m_sDiretorio;
  return m_pDataBase != nullptr ? m_pDataBase->GetDiretorio() : std::string();
}

HRESULT CQVFileBase::GetPathArquivo(std::string* pPath) const {
  QV_CHECK_ARQ(CQVDataBaseUtil::GetPathArquivo(this, m_sNomeArquivo, pPath));
  return S_OK;
}

bool CQVFileBase::ExisteArquivo() const {
  std::string sPath;
  return SUCCEEDED(CQVDataBaseUtil::GetPathArquivo(this, m_sNomeArquivo, &sPath)) && QVFileExists(sPath);
}

bool CQVFileBase::EhArquivoExcluido() const {
  return QVNomesIguais(CQVDataBaseUtil::Extensao(m_sNomeArquivo), "tra") ||
         QVNomesIguais(m_sNomeArquivo, QVDATABASE_NOME_ARQUIVO_CONTROLE_CRIACAO_ARQUIVOS);
}

bool CQVFileBase::GerenciarCabecalho() const {
  int chave = g_chaveDesabilitaCabecalho.load();
  if (chave < 0) {
    std::uint32_t valor = 0;
    const HRESULT hr = QVRegQueryMachineDword(kQVChaveMaquina, "QVDataBase_DesabilitaCabecalho", &valor);
    chave = SUCCEEDED(hr) && valor != 0 ? 1 : 0;
    g_chaveDesabilitaCabecalho = chave;
  }
  return chave == 0 && !EhArquivoExcluido();
}

// ---- opening ----------------------------------------------------------------

HRESULT CQVFileBase::AbreArquivo() { return AbreArquivo(m_eUltimoModo); }

HRESULT CQVFileBase::AbreArquivo(EQVDataBase_ModoAbertura eModoAbertura) {
  if (m_pDataBase != nullptr && m_pDataBase->GetSomenteLeitura())
    eModoAbertura = EQVDataBase_ModoAbertura::eModoLeitura;
  m_eUltimoModo = eModoAbertura;
  if (ArquivoAberto()) {
    if (m_eOpenMode == eModoAbertura) return S_OK;
    // Both writing modes open an existing file alike (they differ only in
    // creating an absent one): a file held for writing stays held, so that
    // no other process can take it between a load and the first write.
    if (QVModoGravacao(m_eOpenMode) && QVModoGravacao(eModoAbertura)) return S_OK;
    FechaArquivo();
  }

  std::string sPath;
  QV_CHECK_ARQ(GetPathArquivo(&sPath));
  const bool bExiste = QVFileExists(sPath);
  // Before the shortcut for a missing file: a listed file that vanished is
  // refused rather than read (or later re-created) as empty.
  QV_CHECK_ARQ(m_ControleCriacaoArquivos.GerenciaControleCriacaoArquivos(eModoAbertura),
               {"(QVUInt) eModoAbertura", std::to_string(static_cast<QVUInt>(eModoAbertura))});
  if (!bExiste && eModoAbertura != EQVDataBase_ModoAbertura::eModoLeituraGravacaoCriacao) return S_OK;

  // A file found under another letter case gets the name the system knows.
  if (bExiste && eModoAbertura == EQVDataBase_ModoAbertura::eModoLeituraGravacao) {
    const std::string sEncontrado = QVResolvePathCase(sPath);
    if (NomeBase(sEncontrado) != m_sNomeArquivo) {
      QV_CHECK_ARQ(QVMoveFile(sEncontrado, sPath));
      QV_CHECK_ARQ(Flush(false));
    }
  }

  if (!m_pArquivo) m_pArquivo = QVCreateOsFile();
  const int iTentativas = g_tentativasAbertura.load();
  bool bAberto = false;
  int iCausa = kQVCausaErroGenerico;
  for (int i = 0; i < iTentativas && !bAberto; ++i) {
    bAberto = m_pArquivo->Open(sPath, static_cast<std::uint32_t>(eModoAbertura));
    if (bAberto) break;
    iCausa = QVCausaDoErroArquivo(m_pArquivo->LastError());
    if (iCausa == CFileException::badPath || iCausa == CFileException::invalidFile) break;
    if (i + 1 < iTentativas) Sleep(g_intervaloAberturaMs.load());
  }
  if (!bAberto) {
    CFileException ex = ExcecaoDoArquivo(kQVCausaErroGenerico);
    // Access denied on a file with the read-only attribute is reported as such.
    if (iCausa == CFileException::accessDenied && QVIsReadOnly(sPath)) {
      ex.m_cause = kQVCausaSomenteLeitura;
      ex.m_lOsError = static_cast<std::int32_t>(ERROR_FILE_READ_ONLY);
    }
    QV_CHECK_ARQ(CatchInicializacao(ex), {"sPathArquivo", sPath});
  }

  m_eOpenMode = eModoAbertura;
  m_bCabecalhoExaminado = false;
  m_bPossuiCabecalho = false;
  if (!bExiste) {
    // A file this open created survives a crash as the control will list
    // it (a temporary copy needs no such care: its rename is synced).
    if (!QVNomesIguais(CQVDataBaseUtil::Extensao(m_sNomeArquivo), "tra"))
      QV_CHECK_ARQ(QVSyncDirectory(sPath.substr(0, sPath.find_last_of('/'))), {"sPathArquivo", sPath});
    // Listed now that it exists.
    QV_CHECK_ARQ(m_ControleCriacaoArquivos.GerenciaControleCriacaoArquivos(eModoAbertura),
                 {"(QVUInt) eModoAbertura", std::to_string(static_cast<QVUInt>(eModoAbertura))});
  }
  // Read-only, the file may be in the middle of another process's write:
  // its header is judged under the shared content lock.
  const bool bPartilhado = !QVModoGravacao(eModoAbertura);
  HRESULT hr = bPartilhado ? TravaConteudo(false) : S_OK;
  if (SUCCEEDED(hr)) hr = GerenciaCabecalho();
  if (bPartilhado) LiberaConteudo();
  if (FAILED(hr)) {
    FechaArquivo();
    LogaFalha(__func__, __LINE__, "GerenciaCabecalho()", hr);
    return hr;
  }
  return S_OK;
}

void CQVFileBase::FechaArquivo() {
  if (m_pArquivo) m_pArquivo->Close();  // releases the content lock too
  m_bSujo = false;
  m_bTravaExclusiva = false;
  m_bRetratoGarantido = false;
  m_uiLimiteDados = kSemLimiteDados;
  m_eOpenMode = EQVDataBase_ModoAbertura::eModoFechado;
  m_bCabecalhoExaminado = false;
  m_bPossuiCabecalho = false;
}

// ---- the header -------------------------------------------------------------

bool CQVFileBase::PossuiCabecalho() {
  if (m_bCabecalhoExaminado) return m_bPossuiCabecalho;
  if (EhArquivoExcluido() || !ArquivoAberto()) return false;
  m_bCabecalhoExaminado = true;
  m_bPossuiCabecalho = false;
  QVUInt uiTamanho = 0;
  if (FAILED(TamanhoArquivo(&uiTamanho)) || uiTamanho < kQVTamanhoPreambulo) return false;
  QVPreambuloArquivo p;
  if (FAILED(LeAbsoluto(0, &p, sizeof p))) return false;
  const auto* bytes = reinterpret_cast<const unsigned char*>(&p);
  m_bPossuiCabecalho = p.usVersaoCabecalho != 0 && p.uiVerificacao1 == QVCrc64(bytes, 2) &&
                       p.uiVerificacao2 == QVCrc64(bytes + 8, 8);
  if (m_bPossuiCabecalho) m_Preambulo = p;
  return m_bPossuiCabecalho;
}

QVUInt CQVFileBase::GetSeekCabecalho() {
  return PossuiCabecalho() && m_Preambulo.usVersaoCabecalho == kQVVersaoCabecalho ? kQVTamanhoBlocoCabecalho : 0;
}

HRESULT CQVFileBase::GerenciaCabecalho() {
  if (!GerenciarCabecalho() || !ArquivoAberto()) return S_OK;
  if (PossuiCabecalho()) {
    QV_CHECK_ARQ(ValidaCabecalho());
  } else if (QVModoGravacao(m_eOpenMode)) {
    // A read-only open reads a file without header as it is; it gets its
    // header at its next open for writing.
    QV_CHECK_ARQ(CriaCabecalho());
  }
  return S_OK;
}

HRESULT CQVFileBase::ValidaCabecalho() {
  QVPreambuloArquivo p;
  QV_CHECK_ARQ(LeAbsoluto(0, &p, sizeof p));
  if (p.usVersaoCabecalho != kQVVersaoCabecalho)
    QV_RETURN_ARQ(E_QVCR_VERSAO_CABECALHO_SUPERIOR_VERSAO_SISTEMA,
                  {"usVersaoCabecalho", std::to_string(p.usVersaoCabecalho)});
  m_Preambulo = p;
  QV_CHECK_ARQ(ValidaCabecalhoV01());
  return S_OK;
}

HRESULT CQVFileBase::ValidaCabecalhoV01() {
  QVCabecalhoArquivo c;
  QV_CHECK_ARQ(LeAbsoluto(kQVTamanhoPreambulo, &c, sizeof c));
  if (c.uiTamanhoCabecalho != kQVTamanhoCabecalho) QV_RETURN_ARQ(E_QVCR_TAMANHO_CABECALHO_NAO_CONFERE);
  if (c.uiVerificacaoCabecalho != QVCrc64(&c, kQVBytesCrcCabecalho)) QV_RETURN_ARQ(E_QVCR_CRC_CABECALHO_NAO_CONFERE);
  QVUInt uiTamanho = 0;
  QV_CHECK_ARQ(TamanhoArquivo(&uiTamanho));
  m_uiLimiteDados = kSemLimiteDados;
  const bool bAdiado = m_pDataBase != nullptr && m_pDataBase->GetAtualizacaoCabecalhoAdiada();
  if (uiTamanho >= kQVTamanhoBlocoCabecalho && c.uiTamanhoDados < uiTamanho - kQVTamanhoBlocoCabecalho && !bAdiado) {
    // Bytes past the header's length are those of a write whose process
    // died before the flush that ends every write: a live writer holds the
    // content lock from its first byte to that flush, and this open either
    // holds the file for writing or judges it under the shared lock. They
    // were never acknowledged. An open for writing cuts them off; a
    // read-only one reads up to the header's length. (Headers deferred to
    // the close lag behind the data by design: no such reading there.)
    if (QVModoGravacao(m_eOpenMode)) {
      QV_CHECK_ARQ(DescartaEscritaInacabada(c.uiTamanhoDados, uiTamanho));
      uiTamanho = kQVTamanhoBlocoCabecalho + c.uiTamanhoDados;
    } else {
      m_uiLimiteDados = c.uiTamanhoDados;
      uiTamanho = kQVTamanhoBlocoCabecalho + c.uiTamanhoDados;
    }
  }
  if (uiTamanho < kQVTamanhoBlocoCabecalho || c.uiTamanhoDados != uiTamanho - kQVTamanhoBlocoCabecalho)
    QV_RETURN_ARQ(E_QVCR_TAMANHO_ARQUIVO_NAO_CONFERE, {"uiTamanhoDados", std::to_string(c.uiTamanhoDados)},
                  {"GetLength", std::to_string(uiTamanho)});
  if (c.usVersaoSistemaCriacao > kQVVersaoSistema) QV_RETURN_ARQ(E_QVCR_VERSAO_SISTEMA_INFERIOR_VERSAO_CRIACAO_CABECALHO);
  if (c.usVersaoSistemaAtualizacao > kQVVersaoSistema)
    QV_RETURN_ARQ(E_QVCR_VERSAO_SISTEMA_INFERIOR_VERSAO_MODIFICACAO_ARQUIVO);
  const std::string sEsperado = Ultimos(QVUtf8ToAnsi(m_sNomeArquivo), kQVMaxTextoCabecalho);
  if (!QVNomesIguais(QVLeCampoTexto(c.szNomeArquivo), sEsperado))
    QV_RETURN_ARQ(E_QVCR_NOME_ARQUIVO_NAO_CONFERE, {"szNomeArquivo", QVAnsiToUtf8(QVLeCampoTexto(c.szNomeArquivo))});
  m_Cabecalho = c;
  return S_OK;
}

void CQVFileBase::PreencheTextos(QVCabecalhoArquivo& c, bool bCriacao, std::int64_t agora) const {
  const std::string sEmpresa = Ultimos(QVUtf8ToAnsi(GetEmpresa()), kQVMaxTextoCabecalho);
  const std::string sComputador = QVComputerName();
  if (bCriacao) {
    CopiaTexto(c.szEmpresa, sEmpresa);
    CopiaTexto(c.szComputador, sComputador);
    return;
  }
  if (std::strncmp(c.szEmpresa, sEmpresa.c_str(), sizeof c.szEmpresa) != 0) {
    std::memcpy(c.szEmpresaAnterior, c.szEmpresa, sizeof c.szEmpresa);
    CopiaTexto(c.szEmpresa, sEmpresa);
    c.iAlteracaoEmpresa = agora;
  }
  if (std::strncmp(c.szComputador, sComputador.c_str(), sizeof c.szComputador) != 0) {
    std::memcpy(c.szComputadorAnterior, c.szComputador, sizeof c.szComputador);
    CopiaTexto(c.szComputador, sComputador);
    c.iAlteracaoComputador = agora;
  }
}

HRESULT CQVFileBase::GeraDadosCabecalho() {
  QVUInt uiTamanho = 0;
  QV_CHECK_ARQ(TamanhoArquivo(&uiTamanho));
  std::memset(&m_Preambulo, 0, sizeof m_Preambulo);
  std::memset(&m_Cabecalho, 0, sizeof m_Cabecalho);
  m_Preambulo.usVersaoCabecalho = kQVVersaoCabecalho;
  const auto* bytes = reinterpret_cast<const unsigned char*>(&m_Preambulo);
  m_Preambulo.uiVerificacao1 = QVCrc64(bytes, 2);
  m_Preambulo.uiVerificacao2 = QVCrc64(bytes + 8, 8);
  const std::int64_t agora = QVDataHoraAgora();
  m_Cabecalho.iUltimaAtualizacao = agora;
  m_Cabecalho.iCriacao = agora;
  m_Cabecalho.iCriacaoCopia = agora;
  m_Cabecalho.uiTamanhoCabecalho = kQVTamanhoCabecalho;
  // The content that is there now is what will sit behind the header.
  m_Cabecalho.uiTamanhoDados = uiTamanho;
  m_Cabecalho.uiNumeroSessao = GetNumeroSessao();
  m_Cabecalho.ulUsuario = GetUsuario();
  m_Cabecalho.usVersaoArquivo = 1;
  m_Cabecalho.usVersaoSistemaCriacao = kQVVersaoSistema;
  m_Cabecalho.usVersaoSistemaAtualizacao = kQVVersaoSistema;
  CopiaTexto(m_Cabecalho.szNomeArquivo, Ultimos(QVUtf8ToAnsi(m_sNomeArquivo), kQVMaxTextoCabecalho));
  PreencheTextos(m_Cabecalho, true, agora);
  m_Cabecalho.uiVerificacaoCabecalho = QVCrc64(&m_Cabecalho, kQVBytesCrcCabecalho);
  m_bCabecalhoExaminado = true;
  m_bPossuiCabecalho = true;
  return S_OK;
}

HRESULT CQVFileBase::CriaCabecalho() {
  QVUInt uiTamanho = 0;
  QV_CHECK_ARQ(TamanhoArquivo(&uiTamanho));
  QV_CHECK_ARQ(GeraDadosCabecalho());
  unsigned char bloco[kQVTamanhoBlocoCabecalho];
  std::memcpy(bloco, &m_Preambulo, kQVTamanhoPreambulo);
  std::memcpy(bloco + kQVTamanhoPreambulo, &m_Cabecalho, kQVTamanhoCabecalho);

  if (uiTamanho == 0) {
    HRESULT hr = GravaAbsoluto(0, bloco, sizeof bloco);
    if (SUCCEEDED(hr) && !m_pArquivo->Flush()) hr = CatchInicializacao(ExcecaoDoArquivo(CFileException::hardIO));
    if (SUCCEEDED(hr)) m_bSujo = false;
    LiberaTravaExclusiva();
    if (FAILED(hr)) {
      m_bCabecalhoExaminado = false;
      LogaFalha(__func__, __LINE__, "GravaAbsoluto(0, bloco, sizeof bloco)", hr);
    }
    return hr;
  }

  // The old content moves behind the new block through a temporary copy,
  // which then takes the file's place. A copy already there is the trace of
  // an interrupted operation: it is left for an administrator to look at.
  m_bCabecalhoExaminado = false;
  bool bSubstituido = false;
  QV_CHECK_ARQ(SubstituiPorCopia(bloco, sizeof bloco, nullptr, uiTamanho, true, &bSubstituido));
  return S_OK;
}

HRESULT CQVFileBase::SubstituiPorCopia(const unsigned char* pBloco, std::size_t nBloco, const void* pDados,
                                       QVUInt uiTamanho, bool bRecusaCopiaExistente, bool* pbSubstituido) {
  *pbSubstituido = false;
  const EQVDataBase_ModoAbertura eModo = m_eOpenMode;
  const std::string sNomeCopia = CQVDataBaseUtil::NomeArquivoTRA(m_sNomeArquivo);
  CQVDataBase qvDB(m_eModulo);
  qvDB.SetDiretorio(GetDiretorio());
  QV_CHECK_ARQ(qvDB.Inicializa(this));
  CQVFileCopia qvFileDestino(sNomeCopia, m_eModulo);
  QV_CHECK_ARQ(qvFileDestino.Inicializa(&qvDB));
  if (qvFileDestino.ExisteArquivo()) {
    if (bRecusaCopiaExistente) QV_RETURN_ARQ(E_QVCR_ARQUIVO_TRA_ENCONTRADO, {"sNomeCopia", sNomeCopia});
    // Left by a rewrite that died before its rename: the file itself is
    // whole and the copy is garbage; it is written anew. Logged, so that an
    // administrator learns of the crash.
    LogaFalha(__func__, __LINE__, "qvFileDestino.ExisteArquivo()", E_QVCR_ARQUIVO_TRA_ENCONTRADO,
              {{"sNomeCopia", sNomeCopia}});
  }

  // The copy: its bytes reach the disk before it takes the file's place.
  HRESULT hr = qvFileDestino.AbreArquivo(EQVDataBase_ModoAbertura::eModoLeituraGravacaoCriacao);
  const char* sExpressao = "qvFileDestino.AbreArquivo(EQVDataBase_ModoAbertura::eModoLeituraGravacaoCriacao)";
  if (SUCCEEDED(hr)) {
    sExpressao = "qvFileDestino.GravaDados(0, pBloco, nBloco)";
    hr = qvFileDestino.TruncaDados(0);
    if (SUCCEEDED(hr) && nBloco > 0) hr = qvFileDestino.GravaDados(0, pBloco, nBloco);
  }
  if (SUCCEEDED(hr) && pDados != nullptr) {
    sExpressao = "qvFileDestino.GravaDados(CQVFileBase::kQVFimDados, pDados, uiTamanho)";
    hr = qvFileDestino.GravaDados(kQVFimDados, pDados, static_cast<std::size_t>(uiTamanho));
  }
  if (SUCCEEDED(hr) && pDados == nullptr) {
    sExpressao = "LeAbsoluto(uiLido, pedaco.data(), n)";
    std::vector<unsigned char> pedaco(static_cast<std::size_t>(std::min<QVUInt>(uiTamanho, kTamanhoPedacoCopia)));
    for (QVUInt uiLido = 0; uiLido < uiTamanho && SUCCEEDED(hr);) {
      const auto n = static_cast<std::size_t>(std::min<QVUInt>(uiTamanho - uiLido, pedaco.size()));
      hr = LeAbsoluto(uiLido, pedaco.data(), n);
      if (SUCCEEDED(hr)) hr = qvFileDestino.GravaDados(kQVFimDados, pedaco.data(), n);
      uiLido += n;
    }
  }
  if (SUCCEEDED(hr)) {
    sExpressao = "qvFileDestino.Finaliza()";
    hr = qvFileDestino.Finaliza();
  }
  if (SUCCEEDED(hr)) {
    // The platform renames over no open file, this process's own handle included.
    FechaArquivo();
    sExpressao = "CQVDataBaseUtil::RenomeiaArquivoTRA(this, m_eModulo, m_sNomeArquivo)";
    hr = CQVDataBaseUtil::RenomeiaArquivoTRA(this, m_eModulo, m_sNomeArquivo);
  }
  if (FAILED(hr)) {
    LogaFalha(__func__, __LINE__, sExpressao, hr, {{"sNomeCopia", sNomeCopia}});
    // The file is as it was and the copy goes, so that the next attempt is
    // not taken for the trace of a crash. A failure here is logged; the
    // first failure is the answer.
    if (qvFileDestino.EstaInicializado()) QV_LOGA(qvFileDestino.Finaliza());
    QV_LOGA(CQVDataBaseUtil::DeletaArquivo(this, m_eModulo, sNomeCopia, EQVDataBase_DeletaArquivoFlag::eNenhum));
    return hr;
  }
  *pbSubstituido = true;
  QV_CHECK_ARQ(AbreArquivo(eModo));
  return S_OK;
}

HRESULT CQVFileBase::SubstituiDados(const void* pDados, std::size_t n, bool* pbSubstituido) {
  *pbSubstituido = false;
  QV_CHECK_ARQ(PodeGravar());
  // The new file's block: this file's own, with the update a flush would
  // make. With header management off the block is kept as it is.
  unsigned char bloco[kQVTamanhoBlocoCabecalho];
  std::size_t nBloco = 0;
  if (GetSeekCabecalho() == kQVTamanhoBlocoCabecalho) {
    QV_CHECK_ARQ(LeAbsoluto(0, bloco, sizeof bloco));
    if (GerenciarCabecalho()) {
      QVCabecalhoArquivo c = m_Cabecalho;
      PreparaAtualizacao(&c, n);
      std::memcpy(bloco + kQVTamanhoPreambulo, &c, sizeof c);
    }
    nBloco = sizeof bloco;
  }
  const EQVDataBase_ModoAbertura eModo = m_eOpenMode;
  const HRESULT hr = SubstituiPorCopia(bloco, nBloco, pDados, n, false, pbSubstituido);
  if (*pbSubstituido) {
    // Memory is about to take the new data. Not reopened, the file is
    // taken for absent, and the next access reads it again.
    QV_LOGA(TiraRetrato());
  } else if (!ArquivoAberto()) {
    // Closed for the rename that failed: open again. Another process may
    // have written it meanwhile; the snapshot, older, makes the next access
    // read it again.
    QV_LOGA(AbreArquivo(eModo));
  }
  if (FAILED(hr))
    LogaFalha(__func__, __LINE__, "SubstituiPorCopia(bloco, nBloco, pDados, n, false, pbSubstituido)", hr,
              {{"n", std::to_string(n)}});
  return hr;
}

void CQVFileBase::PreparaAtualizacao(QVCabecalhoArquivo* c, QVUInt uiTamanhoDados) const {
  // One reading of the clock: a change of company or computer is dated
  // with the update that saw it.
  const std::int64_t agora = QVDataHoraAgora();
  c->iUltimaAtualizacao = agora;
  c->uiTamanhoDados = uiTamanhoDados;
  if (c->uiContadorAtualizacoes == ~std::uint64_t{0}) {
    c->uiContadorAtualizacoes = 0;
    ++c->usContadorVoltas;
  } else {
    ++c->uiContadorAtualizacoes;
  }
  c->uiNumeroSessao = GetNumeroSessao();
  c->ulUsuario = GetUsuario();
  c->usVersaoSistemaAtualizacao = kQVVersaoSistema;
  PreencheTextos(*c, false, agora);
  c->uiVerificacaoCabecalho = QVCrc64(c, kQVBytesCrcCabecalho);
}

HRESULT CQVFileBase::AtualizaCabecalho() {
  if (!GerenciarCabecalho() || !PossuiCabecalho()) return S_OK;
  QVUInt uiTamanho = 0;
  QV_CHECK_ARQ(TamanhoArquivo(&uiTamanho));
  QVCabecalhoArquivo c = m_Cabecalho;
  PreparaAtualizacao(&c, uiTamanho - kQVTamanhoBlocoCabecalho);
  QV_CHECK_ARQ(GravaAbsoluto(kQVTamanhoPreambulo, &c, sizeof c));
  m_Cabecalho = c;
  return S_OK;
}

HRESULT CQVFileBase::GravaVersaoArquivo(std::uint16_t usVersaoArquivo) {
  if (!GerenciarCabecalho()) return S_OK;
  QV_CHECK_ARQ(AbreArquivo(EQVDataBase_ModoAbertura::eModoLeituraGravacaoCriacao));
  m_Cabecalho.usVersaoArquivo = usVersaoArquivo;
  QV_CHECK_ARQ(Flush());
  return S_OK;
}

HRESULT CQVFileBase::Flush(bool bFinal) {
  if (!ArquivoAberto() || !QVModoGravacao(m_eOpenMode)) return S_OK;
  if (FAILED(m_hrDuvida)) {
    // A file in doubt keeps its old header: see invariant 3.
    m_pArquivo->Flush();
    LiberaTravaExclusiva();
    return m_hrDuvida;
  }
  const bool bAdiado = m_pDataBase != nullptr && m_pDataBase->GetAtualizacaoCabecalhoAdiada();
  HRESULT hr = bFinal == bAdiado ? AtualizaCabecalho() : S_OK;
  if (FAILED(hr)) {
    LogaFalha(__func__, __LINE__, "AtualizaCabecalho()", hr);
  } else if (m_bSujo && !m_pArquivo->Flush()) {
    hr = CatchInicializacao(ExcecaoDoArquivo(CFileException::hardIO));
    LogaFalha(__func__, __LINE__, "CatchInicializacao(pEx)", hr);
  } else {
    m_bSujo = false;
    // Memory is what the disk holds now (the caller's write is complete).
    hr = TiraRetrato();
  }
  // Data and header are on disk (or the write failed and will be rolled
  // back under a new lock): readers may look again.
  LiberaTravaExclusiva();
  return hr;
}

HRESULT CQVFileBase::Reinicializa() {
  const CQVProfilerEmpresa identidade(GetEmpresa(), GetUsuario(), GetNumeroSessao());
  QV_CHECK_ARQ(Finaliza());
  if (m_pDataBase != nullptr) {
    QV_CHECK_ARQ(Inicializa(m_pDataBase));
  } else {
    QV_CHECK_ARQ(Inicializa(&identidade));
  }
  return S_OK;
}

HRESULT CQVFileBase::DeletaArquivo() {
  QV_CHECK_ARQ(Finaliza());
  QV_CHECK_ARQ(CQVDataBaseUtil::DeletaArquivo(this, m_eModulo, m_sNomeArquivo,
                                              EQVDataBase_DeletaArquivoFlag::eRemoverDoControleCriacaoArquivosInMemory));
  QV_CHECK_ARQ(Reinicializa());
  return S_OK;
}

// ---- file exceptions ----------------------------------------------------------

CFileException CQVFileBase::ExcecaoDoArquivo(int iCausaPadrao) const {
  const std::uint32_t ulErro = m_pArquivo ? m_pArquivo->LastError() : ERROR_INVALID_HANDLE;
  const int iCausa = ulErro != 0 ? QVCausaDoErroArquivo(ulErro) : iCausaPadrao;
  std::string sPath;
  (void)GetPathArquivo(&sPath);
  return CFileException(iCausa, static_cast<std::int32_t>(ulErro), sPath);
}

HRESULT CQVFileBase::CatchGravacao(const CFileException& ex) {
  const HRESULT hr = StatusDaExcecao(ex);
  LogaFalha(__func__, __LINE__, "pEx", hr,
            {{"m_cause", QVNomeCausaArquivo(ex.m_cause)}, {"m_lOsError", std::to_string(ex.m_lOsError)}});
  return hr;
}

HRESULT CQVFileBase::CatchInicializacao(const CFileException& ex) {
  const HRESULT hr = StatusDaExcecao(ex);
  LogaFalha(__func__, __LINE__, "pEx", hr,
            {{"m_cause", QVNomeCausaArquivo(ex.m_cause)}, {"m_lOsError", std::to_string(ex.m_lOsError)}});
  return hr;
}

bool CQVFileBase::EhUmaExcecaoFatal(const CFileException& ex) const { return ex.m_cause != CFileException::endOfFile; }

// ---- data access ----------------------------------------------------------------

HRESULT CQVFileBase::TamanhoArquivo(QVUInt* puiTamanho) {
  if (!ArquivoAberto()) {
    *puiTamanho = 0;
    return S_OK;
  }
  std::uint64_t u = 0;
  if (!m_pArquivo->GetLength(&u)) return CatchInicializacao(ExcecaoDoArquivo(CFileException::hardIO));
  *puiTamanho = u;
  return S_OK;
}

HRESULT CQVFileBase::LeAbsoluto(QVUInt uiOffset, void* pBuffer, std::size_t n) {
  if (!ArquivoAberto()) return CatchInicializacao(CFileException(CFileException::invalidFile, 0, m_sNomeArquivo));
  if (!m_pArquivo->Seek(uiOffset)) return CatchInicializacao(ExcecaoDoArquivo(CFileException::badSeek));
  auto* p = static_cast<unsigned char*>(pBuffer);
  while (n > 0) {
    std::size_t lido = 0;
    if (!m_pArquivo->Read(p, n, &lido)) return CatchInicializacao(ExcecaoDoArquivo(CFileException::hardIO));
    if (lido == 0) return CatchInicializacao(CFileException(CFileException::endOfFile, 0, m_sNomeArquivo));
    p += lido;
    n -= lido;
  }
  return S_OK;
}

HRESULT CQVFileBase::GravaAbsoluto(QVUInt uiOffset, const void* pBuffer, std::size_t n) {
  if (!ArquivoAberto()) return CatchGravacao(CFileException(CFileException::invalidFile, 0, m_sNomeArquivo));
  QV_CHECK_ARQ(TravaConteudo(true));
  if (!m_pArquivo->Seek(uiOffset)) return CatchGravacao(ExcecaoDoArquivo(CFileException::badSeek));
  m_bSujo = true;
  if (!m_pArquivo->Write(pBuffer, n)) return CatchGravacao(ExcecaoDoArquivo(CFileException::hardIO));
  return S_OK;
}

HRESULT CQVFileBase::LeDados(QVUInt uiOffset, void* pBuffer, std::size_t n) {
  return LeAbsoluto(GetSeekCabecalho() + uiOffset, pBuffer, n);
}

HRESULT CQVFileBase::GravaDados(QVUInt uiOffset, const void* pBuffer, std::size_t n, QVUInt* puiOffset) {
  const QVUInt uiSeek = GetSeekCabecalho();
  QVUInt uiAbsoluto = uiSeek + uiOffset;
  if (uiOffset == kQVFimDados) QV_CHECK_ARQ(TamanhoArquivo(&uiAbsoluto));
  QV_CHECK_ARQ(GravaAbsoluto(uiAbsoluto, pBuffer, n));
  if (puiOffset != nullptr) *puiOffset = uiAbsoluto - uiSeek;
  return S_OK;
}

HRESULT CQVFileBase::TamanhoDadosSemLimite(QVUInt* puiTamanho) {
  QVUInt u = 0;
  QV_CHECK_ARQ(TamanhoArquivo(&u));
  const QVUInt uiSeek = GetSeekCabecalho();
  *puiTamanho = u > uiSeek ? u - uiSeek : 0;
  return S_OK;
}

HRESULT CQVFileBase::TamanhoDados(QVUInt* puiTamanho) {
  QV_CHECK_ARQ(TamanhoDadosSemLimite(puiTamanho));
  if (m_uiLimiteDados != kSemLimiteDados && !QVModoGravacao(m_eOpenMode))
    *puiTamanho = std::min(*puiTamanho, m_uiLimiteDados);
  return S_OK;
}

HRESULT CQVFileBase::DescartaEscritaInacabada(QVUInt uiTamanhoDados, QVUInt uiTamanhoArquivo) {
  QV_CHECK_ARQ(TravaConteudo(true));
  const bool bCortado =
      m_pArquivo->SetLength(kQVTamanhoBlocoCabecalho + uiTamanhoDados) && m_pArquivo->Flush();
  const CFileException ex = ExcecaoDoArquivo(CFileException::hardIO);
  LiberaConteudo();
  if (!bCortado) {
    const HRESULT hr = CatchGravacao(ex);
    LogaFalha(__func__, __LINE__, "m_pArquivo->SetLength(kQVTamanhoBlocoCabecalho + uiTamanhoDados)", hr);
    return hr;
  }
  // Not a failure, but the administrator's trace of a crash.
  QVEscreveLinhaErroTexto(QVSinkAtual(), NomeClasseLog() + "::" + __func__, FonteLog(), __LINE__,
                          "Bytes de uma gravação inacabada (processo encerrado antes de concluí-la) descartados",
                          {{"m_sNomeArquivo", m_sNomeArquivo},
                           {"uiTamanhoDados", std::to_string(uiTamanhoDados)},
                           {"GetLength", std::to_string(uiTamanhoArquivo)}});
  return S_OK;
}

HRESULT CQVFileBase::TruncaDados(QVUInt uiTamanho) {
  if (!ArquivoAberto()) return CatchGravacao(CFileException(CFileException::invalidFile, 0, m_sNomeArquivo));
  QV_CHECK_ARQ(TravaConteudo(true));
  m_bSujo = true;
  if (!m_pArquivo->SetLength(GetSeekCabecalho() + uiTamanho))
    return CatchGravacao(ExcecaoDoArquivo(CFileException::hardIO));
  return S_OK;
}

// ---- between processes --------------------------------------------------------

HRESULT CQVFileBase::TravaConteudo(bool bExclusiva) {
  if (bExclusiva && m_bTravaExclusiva) return S_OK;
  const auto ulEsperaMs = static_cast<std::uint32_t>(g_tentativasAbertura.load()) * g_intervaloAberturaMs.load();
  if (!m_pArquivo->LockContent(bExclusiva, ulEsperaMs))
    return CatchInicializacao(ExcecaoDoArquivo(CFileException::lockViolation));
  m_bTravaExclusiva = bExclusiva;
  return S_OK;
}

void CQVFileBase::LiberaConteudo() {
  if (ArquivoAberto()) m_pArquivo->UnlockContent();
}

void CQVFileBase::LiberaTravaExclusiva() {
  if (m_bTravaExclusiva) LiberaConteudo();
  m_bTravaExclusiva = false;
}

HRESULT CQVFileBase::LeContadores(std::uint64_t* puiContador, std::uint16_t* pusVoltas) {
  *puiContador = 0;
  *pusVoltas = 0;
  if (GetSeekCabecalho() != kQVTamanhoBlocoCabecalho) return S_OK;
  QVCabecalhoArquivo c;
  QV_CHECK_ARQ(LeAbsoluto(kQVTamanhoPreambulo, &c, sizeof c));
  *puiContador = c.uiContadorAtualizacoes;
  *pusVoltas = c.usContadorVoltas;
  return S_OK;
}

HRESULT CQVFileBase::TiraRetrato() {
  m_Retrato = QVFileIdentity{};
  m_uiRetratoContador = 0;
  m_usRetratoVoltas = 0;
  m_bRetratoGarantido = false;
  // Closed: memory reflects an absent file (whatever the path holds by now).
  if (!ArquivoAberto()) return S_OK;
  QVFileIdentity id;
  if (!m_pArquivo->GetIdentity(&id)) return CatchInicializacao(ExcecaoDoArquivo(CFileException::hardIO));
  QV_CHECK_ARQ(LeContadores(&m_uiRetratoContador, &m_usRetratoVoltas));
  m_Retrato = id;
  m_bRetratoGarantido = QVModoGravacao(m_eOpenMode);
  return S_OK;
}

HRESULT CQVFileBase::DiscoMudou(bool* pbMudou) {
  *pbMudou = false;
  QVFileIdentity id;
  if (!ArquivoAberto()) {
    // A file this process does not have open is judged by its identity,
    // length and time of change.
    std::string sPath;
    QV_CHECK_ARQ(GetPathArquivo(&sPath));
    QV_CHECK_ARQ(QVGetFileIdentity(sPath, &id), {"sPathArquivo", sPath});
    *pbMudou = id != m_Retrato;
    if (*pbMudou || !id.bExists || !AlteradoHaPouco(id)) return S_OK;
    // The same identity, but changed within a tick of the file system's
    // clock: an in-place write of another process in that tick would leave
    // it as it was. The header's counters, which every write moves, tell.
    std::uint64_t uiContador = 0;
    std::uint16_t usVoltas = 0;
    QV_CHECK_ARQ(LeContadoresSemReter(&uiContador, &usVoltas));
    *pbMudou = uiContador != m_uiRetratoContador || usVoltas != m_usRetratoVoltas;
    return S_OK;
  }
  // An open file cannot be replaced (no rename over an open file), only
  // written: its length, time of change and header counters tell.
  if (!m_pArquivo->GetIdentity(&id)) return CatchInicializacao(ExcecaoDoArquivo(CFileException::hardIO));
  std::uint64_t uiContador = 0;
  std::uint16_t usVoltas = 0;
  QV_CHECK_ARQ(LeContadores(&uiContador, &usVoltas));
  *pbMudou = id != m_Retrato || uiContador != m_uiRetratoContador || usVoltas != m_usRetratoVoltas;
  return S_OK;
}

bool CQVFileBase::AlteradoHaPouco(const QVFileIdentity& id) {
  // Wider than any file system's clock tick for a file's time of change.
  constexpr std::int64_t kMargemRelogioNs = 2'000'000'000;
  const std::int64_t iAgoraNs =
      std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now().time_since_epoch())
          .count();
  return iAgoraNs - id.iModifiedNs <= kMargemRelogioNs;
}

HRESULT CQVFileBase::LeContadoresSemReter(std::uint64_t* puiContador, std::uint16_t* pusVoltas) {
  const EQVDataBase_ModoAbertura eUltimo = m_eUltimoModo;
  HRESULT hr = AbreArquivo(EQVDataBase_ModoAbertura::eModoLeitura);
  if (FAILED(hr)) {
    LogaFalha(__func__, __LINE__, "AbreArquivo(EQVDataBase_ModoAbertura::eModoLeitura)", hr);
  } else if (ArquivoAberto()) {
    // Under the shared content lock: not in the middle of a write.
    hr = TravaConteudo(false);
    if (SUCCEEDED(hr)) {
      hr = LeContadores(puiContador, pusVoltas);
      LiberaConteudo();
    }
    if (FAILED(hr)) LogaFalha(__func__, __LINE__, "LeContadores(puiContador, pusVoltas)", hr);
  }
  FechaArquivo();
  m_eUltimoModo = eUltimo;
  return hr;
}

HRESULT CQVFileBase::ConfereDisco(bool* pbAtual) {
  *pbAtual = true;
  if (m_bRetratoGarantido) return S_OK;
  bool bMudou = false;
  QV_CHECK_ARQ(DiscoMudou(&bMudou));
  *pbAtual = !bMudou;
  return S_OK;
}

HRESULT CQVFileBase::LeDoDisco() {
  // A file open only for reading may be in the middle of another process's
  // write: it is read under the shared content lock, and its header judged
  // again there (a write may have changed it since the open).
  const bool bPartilhado = ArquivoAberto() && !QVModoGravacao(m_eOpenMode);
  HRESULT hr = bPartilhado ? TravaConteudo(false) : S_OK;
  if (SUCCEEDED(hr) && bPartilhado) {
    m_bCabecalhoExaminado = false;
    hr = GerenciaCabecalho();
  }
  QVUInt uiTamanho = 0;
  if (SUCCEEDED(hr)) hr = TamanhoDados(&uiTamanho);
  if (SUCCEEDED(hr)) hr = LeConteudo(ArquivoAberto(), uiTamanho);
  if (SUCCEEDED(hr)) hr = TiraRetrato();
  if (SUCCEEDED(hr)) m_uiEpocaVerificada = EpocaLeitura();
  if (bPartilhado) LiberaConteudo();
  if (FAILED(hr)) LogaFalha(__func__, __LINE__, "LeConteudo(ArquivoAberto(), uiTamanho)", hr);
  return hr;
}

HRESULT CQVFileBase::Carrega() {
  if (m_bCargaSemReter || (m_pDataBase != nullptr && !m_pDataBase->GetRetemArquivos())) {
    QV_CHECK_ARQ(CarregaSemReter());
    return S_OK;
  }
  QV_CHECK_ARQ(AbreArquivo(EQVDataBase_ModoAbertura::eModoLeituraGravacao));
  QV_CHECK_ARQ(LeDoDisco());
  return S_OK;
}

HRESULT CQVFileBase::CarregaSemReter() {
  // Opened for reading only and closed again; the mode later opens reuse
  // stays the one asked for before.
  const EQVDataBase_ModoAbertura eUltimo = m_eUltimoModo;
  HRESULT hr = AbreArquivo(EQVDataBase_ModoAbertura::eModoLeitura);
  if (FAILED(hr))
    LogaFalha(__func__, __LINE__, "AbreArquivo(EQVDataBase_ModoAbertura::eModoLeitura)", hr);
  else if (FAILED(hr = LeDoDisco()))
    LogaFalha(__func__, __LINE__, "LeDoDisco()", hr);
  FechaArquivo();
  m_eUltimoModo = eUltimo;
  return hr;
}

std::uint64_t CQVFileBase::EpocaLeitura() const {
  return m_pDataBase != nullptr ? m_pDataBase->GetEpocaLeitura() : 0;
}

HRESULT CQVFileBase::SincronizaLeitura() {
  if (!EstaInicializado() || m_bRetratoGarantido || FAILED(m_hrDuvida)) return S_OK;
  const std::uint64_t uiEpoca = EpocaLeitura();
  if (uiEpoca != 0 && uiEpoca == m_uiEpocaVerificada) return S_OK;
  QV_CHECK_ARQ(VerificaDisco());
  m_uiEpocaVerificada = uiEpoca;
  return S_OK;
}

HRESULT CQVFileBase::VerificaDisco() {
  if (ArquivoAberto() && QVModoGravacao(m_eOpenMode)) {
    QV_CHECK_ARQ(SincronizaGravacao());
    return S_OK;
  }
  // The look needs no lock: a write in progress shows as a change (its
  // length, its time of change), and the reading again happens under it.
  bool bMudou = false;
  QV_CHECK_ARQ(DiscoMudou(&bMudou));
  if (!bMudou) return S_OK;
  if (ArquivoAberto()) {
    QV_CHECK_ARQ(LeDoDisco());
    return S_OK;
  }
  // Not open here: read without holding it (a read never takes the place
  // of another process's writer).
  QV_CHECK_ARQ(CarregaSemReter());
  return S_OK;
}

HRESULT CQVFileBase::LiberaGravacao() {
  if (!ArquivoAberto() || !QVModoGravacao(m_eOpenMode)) return S_OK;
  // The flush takes the snapshot of what this process wrote, which the
  // close keeps: the next look at the disk finds it unchanged unless
  // another process wrote since.
  const HRESULT hr = Flush(true);
  FechaArquivo();
  if (FAILED(hr)) LogaFalha(__func__, __LINE__, "Flush(true)", hr);
  return hr;
}

HRESULT CQVFileBase::SincronizaGravacao(bool* pbRecarregado) {
  if (pbRecarregado != nullptr) *pbRecarregado = false;
  if (m_bRetratoGarantido) return S_OK;
  // Open for writing: nobody else is writing, no lock needed.
  bool bMudou = false;
  QV_CHECK_ARQ(DiscoMudou(&bMudou));
  if (!bMudou) {
    QV_CHECK_ARQ(TiraRetrato());
    return S_OK;
  }
  QV_CHECK_ARQ(LeDoDisco());
  if (pbRecarregado != nullptr) *pbRecarregado = true;
  return S_OK;
}

HRESULT CQVFileBase::PodeGravar() {
  if (FAILED(m_hrDuvida)) return m_hrDuvida;
  if (!ArquivoAberto() || !QVModoGravacao(m_eOpenMode)) return HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED);
  return S_OK;
}

void CQVFileBase::MarcaDuvida(HRESULT hr) {
  if (SUCCEEDED(m_hrDuvida)) m_hrDuvida = hr;
}
