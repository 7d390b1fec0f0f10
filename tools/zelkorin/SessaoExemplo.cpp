#include "tools/zelkorin/SessaoExemplo.h"

#include <functional>
#include <nlohmann/json.hpp>
#include <string>

#include "core/QVRPCDLL/QVFrame.h"
#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVDescritorRegistro.h"
#include "df/qvlibex/QVStatus.h"
#include "ge/zelkorin/ZelkorinInterfaces.h"
#include "platform/QVCodePage.h"
#include "platform/QVTaskMem.h"

namespace {

class CSessao {
 public:
  CSessao(const QVOpcoesSessaoExemplo& opcoes, std::FILE* out) : m_Opcoes(opcoes), m_Out(out) {}

  // Prints one answer and checks it against what a client expects.
  void Resposta(const std::string& chamada, HRESULT hr, HRESULT esperado, const std::string& extra = {}) {
    const std::string nome = QVNomeSimbolico(hr);
    std::fprintf(m_Out, "  %-48s -> 0x%08X %s%s%s\n", chamada.c_str(), static_cast<unsigned>(hr),
                 nome.empty() ? "" : nome.c_str(), extra.empty() ? "" : "  ", extra.c_str());
    if (hr != esperado) {
      std::fprintf(m_Out, "     (esperado 0x%08X %s)\n", static_cast<unsigned>(esperado),
                   QVNomeSimbolico(esperado).c_str());
      m_bFalhou = true;
    }
  }

  _REG_DF_INICIALIZAPS RegistroInicializacao() const {
    QVDadosInicializacao d;
    d.empresa = QVUtf8ToAnsi(m_Opcoes.empresa);
    d.usuario = m_Opcoes.usuario;
    d.numeroSessao = m_Opcoes.numeroSessao;
    d.aplicativo = "zelkorin";
    d.moduleName = "SessaoExemplo";
    d.arquivoFonte = "tools/zelkorin/SessaoExemplo.cpp";
    d.linhaFonte = __LINE__;
    d.nomeUsuarioDominio = "exemplo";
    return QVMontaInicializaPS(d);
  }

  // The calls every object answers alike: keep-alive, last error,
  // initialisation, generic function.
  void ChamadasComuns(IQVUnknown* obj, const std::string& classe, const std::function<HRESULT()>& chamadaNegocio,
                      const std::string& nomeNegocio, HRESULT hrNegocio) {
    KeepAlive(obj, classe);
    Resposta(classe + "." + nomeNegocio + " (antes de inicializar)", chamadaNegocio(), E_QVCR_SERVIDOR_NAO_INICIALIZADO);
    UltimoErro(obj, classe);
    Resposta(classe + ".Inicializa_Padrao", obj->Inicializa_Padrao(RegistroInicializacao()), S_OK,
             "empresa " + m_Opcoes.empresa);
    KeepAlive(obj, classe);
    Resposta(classe + "." + nomeNegocio, chamadaNegocio(), hrNegocio);
    UltimoErro(obj, classe);
  }

  void KeepAlive(IQVUnknown* obj, const std::string& classe) {
    std::int32_t bOK = 0;
    const HRESULT hr = obj->KeepAlive(&bOK);
    Resposta(classe + ".KeepAlive", hr, S_OK, "pbOK = " + std::to_string(bOK));
  }

  void UltimoErro(IQVUnknown* obj, const std::string& classe) {
    _REG_DF_ERROPS erro;
    const HRESULT hr = obj->GetUltimoErro(&erro);
    std::string texto = "hr = " + Hex(erro.hr);
    if (erro.cMensagem[0] != 0) texto += " \"" + QVAnsiToUtf8(QVLeCampoTexto(erro.cMensagem)) + "\"";
    Resposta(classe + ".GetUltimoErro", hr, S_OK, texto);
  }

  void Estatisticas(IQVUnknown* obj, const std::string& classe) {
    _REG_DF_FUNCAO_GENERICAPS entrada{};
    _REG_DF_FUNCAO_GENERICAPS* saida = nullptr;
    const HRESULT hr = obj->FuncaoGenerica(QV_FUNCAO_GENERICA_ESTATISTICAS_USO, entrada, &saida);
    Resposta(classe + ".FuncaoGenerica(" + std::to_string(QV_FUNCAO_GENERICA_ESTATISTICAS_USO) + ")", hr, S_OK);
    // A client that asked for the statistics and got none has failed.
    nlohmann::json j;
    if (SUCCEEDED(hr) && saida != nullptr && saida->pListaBytes != nullptr)
      j = nlohmann::json::parse(reinterpret_cast<const char*>(saida->pListaBytes), nullptr, false);
    if (j.is_object()) {
      std::fprintf(m_Out, "%s\n", j.dump(2).c_str());
    } else if (SUCCEEDED(hr)) {
      std::fprintf(m_Out, "     (sem estatísticas: a resposta não é um objeto JSON)\n");
      m_bFalhou = true;
    }
    if (saida != nullptr) {
      QVLibera(saida);
      CoTaskMemFree(saida);
    }
  }

  static std::string Hex(HRESULT hr) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "0x%08X", static_cast<unsigned>(hr));
    return buf;
  }

  bool Falhou() const { return m_bFalhou; }

 private:
  const QVOpcoesSessaoExemplo& m_Opcoes;
  std::FILE* m_Out;
  bool m_bFalhou = false;
};

}  // namespace

int QVExecutaSessaoExemplo(const QVOpcoesSessaoExemplo& opcoes, std::FILE* out) {
  CSessao sessao(opcoes, out);

  std::fprintf(out, "QVGE_Atendimento %s\n", QVGuidFormat(CLSID_QVGE_Atendimento).c_str());
  CQVComPtr<IQVGE_Atendimento> atendimento;
  HRESULT hr = CoCreateInstance(CLSID_QVGE_Atendimento, nullptr, CLSCTX_ALL, IID_IQVGE_Atendimento, atendimento.ppv());
  sessao.Resposta("CoCreateInstance(QVGE_Atendimento)", hr, S_OK);
  if (FAILED(hr)) return 1;
  sessao.ChamadasComuns(
      atendimento.get(), "QVGE_Atendimento",
      [&] {
        _REG_PROPRIEDADES_ATENDIMENTO_PS propriedades{};
        const HRESULT hrLe = atendimento->LePropriedades(&propriedades, 0);
        QVLibera(&propriedades);
        return hrLe;
      },
      "LePropriedades", S_OK);

  std::fprintf(out, "QVGE_Projeto %s\n", QVGuidFormat(CLSID_QVGE_Projeto).c_str());
  CQVComPtr<IQVGE_Projeto> projeto;
  hr = CoCreateInstance(CLSID_QVGE_Projeto, nullptr, CLSCTX_ALL, IID_IQVGE_Projeto, projeto.ppv());
  sessao.Resposta("CoCreateInstance(QVGE_Projeto)", hr, S_OK);
  if (FAILED(hr)) return 1;
  sessao.ChamadasComuns(
      projeto.get(), "QVGE_Projeto",
      [&] {
        _REG_PROJETO_ATENDIMENTO_PS registro;
        return projeto->LeRegistro(1, &registro);
      },
      "LeRegistro", E_NOTIMPL);

  std::fprintf(out, "Estatísticas de uso\n");
  sessao.Estatisticas(projeto.get(), "QVGE_Projeto");

  CQVComPtr<IUnknown> desconhecida;
  hr = CoCreateInstance(QVGuid("{00000000-0000-0000-0000-000000000001}"), nullptr, CLSCTX_ALL, IID_IUnknown,
                        desconhecida.ppv());
  sessao.Resposta("CoCreateInstance(classe desconhecida)", hr, REGDB_E_CLASSNOTREG);
  return sessao.Falhou() ? 1 : 0;
}
