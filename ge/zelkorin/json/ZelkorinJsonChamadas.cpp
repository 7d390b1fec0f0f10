#include "ge/zelkorin/json/ZelkorinJsonChamadas.h"

#include <array>
#include <cstdio>

#include "df/qvlibex/QVStatus.h"

namespace {

template <class I, class M>
class CChamada final : public IQVChamadaJson {
 public:
  std::string_view Metodo() const override { return M::kNome; }

  HRESULT Executa(void* pInterface) override { return m_Valores.Chama(static_cast<I*>(pInterface)); }

  QVJson Saida() override {
    QVJson j = QVJson::object();
    QVParaCadaParametro<M>([&]<std::size_t k, class P>() {
      if constexpr (P::kSai) {
        using T = typename P::Tipo;
        auto& v = m_Valores.template Valor<k>();
        const std::string nome(M::kNomesParametros[k]);
        if constexpr (std::is_pointer_v<T> && !std::same_as<T, BSTR>) {
          j[nome] = v == nullptr ? QVJson() : QVParaJson(*v);
        } else {
          static constexpr QVJsonCampo kCampo = QVJsonCampoDe<T>(M::kNomesParametros[k].data(), 0);
          j[nome] = QVJsonLeCampo(kCampo, &v);
        }
      }
    });
    return j;
  }

  HRESULT Le(const QVJson& entrada, const _REG_DF_INICIALIZAPS& inicializacao, const std::string& sLugar,
             QVErroJson* pErro) {
    const std::string sEntrada = sLugar + ".entrada";
    const auto falha = [&](std::string sOnde, std::string sMotivo) {
      pErro->sLugar = std::move(sOnde);
      pErro->sMotivo = std::move(sMotivo);
      return E_INVALIDARG;
    };
    if (!entrada.is_null() && !entrada.is_object())
      return falha(sEntrada, "esperado um objeto com os parâmetros de entrada de " + std::string(M::kNome));
    // Every name given must be an in parameter of the method.
    for (const auto& [nome, v] : entrada.items()) {
      std::size_t k = 0;
      while (k < M::kNomesParametros.size() && M::kNomesParametros[k] != nome) ++k;
      if (k == M::kNomesParametros.size())
        return falha(sEntrada + "." + nome,
                     "parâmetro desconhecido de " + std::string(M::kNome) + " (" + Parametros() + ")");
      if (!Entra(k))
        return falha(sEntrada + "." + nome,
                     "parâmetro de saída de " + std::string(M::kNome) + ": vem na resposta, não se informa");
    }
    HRESULT hr = S_OK;
    std::uint64_t bytes = 0;
    QVParaCadaParametro<M>([&]<std::size_t k, class P>() {
      using T = typename P::Tipo;
      if constexpr (P::kEntra) {
        if (FAILED(hr)) return;
        T& v = m_Valores.template Valor<k>();
        const std::string nome(M::kNomesParametros[k]);
        if constexpr (std::same_as<T, _REG_DF_INICIALIZAPS>) v = inicializacao;
        if (!entrada.contains(nome)) return;
        static constexpr QVJsonCampo kCampo = QVJsonCampoDe<T>(M::kNomesParametros[k].data(), 0);
        hr = QVJsonEscreveCampo(kCampo, entrada[nome], &v, sEntrada + "." + nome, &bytes, pErro);
        if constexpr (std::same_as<T, _REG_DF_INICIALIZAPS>)
          if (SUCCEEDED(hr) && (!entrada[nome].is_object() || !entrada[nome].contains("uiCRC")))
            v.uiCRC = QVCrcInicializaPS(v);
      }
    });
    return hr;
  }

  static std::string Parametros() {
    std::string s;
    for (std::string_view nome : M::kNomesParametros) s += (s.empty() ? "" : ", ") + std::string(nome);
    return s.empty() ? "não tem parâmetros" : "parâmetros: " + s;
  }

 private:
  static bool Entra(std::size_t k) {
    bool b = false;
    QVParaCadaParametro<M>([&]<std::size_t i, class P>() {
      if (i == k) b = P::kEntra;
    });
    return b;
  }

  CQVValoresChamada<M> m_Valores;
};

template <class I>
HRESULT Prepara(std::string_view metodo, const QVJson& entrada, const _REG_DF_INICIALIZAPS& inicializacao,
                const std::string& sLugar, std::unique_ptr<IQVChamadaJson>* pp, QVErroJson* pErro) {
  bool bAchou = false;
  HRESULT hr = S_OK;
  std::string sMetodos;
  QVParaCadaMetodo<I>([&]<class M>() {
    sMetodos += (sMetodos.empty() ? "" : ", ") + std::string(M::kNome);
    if (bAchou || M::kNome != metodo) return;
    bAchou = true;
    auto chamada = std::make_unique<CChamada<I, M>>();
    hr = chamada->Le(entrada, inicializacao, sLugar, pErro);
    if (SUCCEEDED(hr)) *pp = std::move(chamada);
  });
  if (!bAchou) {
    pErro->sLugar = sLugar + ".metodo";
    pErro->sMotivo = "método desconhecido de " + std::string(QVInterface<I>::kNome) + ": \"" + std::string(metodo) +
                     "\" (métodos: " + sMetodos + ")";
    return E_INVALIDARG;
  }
  return hr;
}

template <class I>
IQVUnknown* ComoUnknown(void* pInterface) {
  return static_cast<I*>(pInterface);
}

const std::array<QVClasseJson, 2> kClasses = {{
    {"QVGE_Atendimento", CLSID_QVGE_Atendimento, IID_IQVGE_Atendimento, &ComoUnknown<IQVGE_Atendimento>,
     &Prepara<IQVGE_Atendimento>},
    {"QVGE_Projeto", CLSID_QVGE_Projeto, IID_IQVGE_Projeto, &ComoUnknown<IQVGE_Projeto>, &Prepara<IQVGE_Projeto>},
}};

}  // namespace

std::span<const QVClasseJson> QVClassesJson() { return kClasses; }

const QVClasseJson* QVProcuraClasseJson(std::string_view nome) {
  for (const QVClasseJson& c : kClasses)
    if (c.nome == nome) return &c;
  return nullptr;
}

HRESULT QVPreparaChamadaJson(const QVClasseJson& classe, std::string_view metodo, const QVJson& entrada,
                             const _REG_DF_INICIALIZAPS& inicializacao, const std::string& sLugar,
                             std::unique_ptr<IQVChamadaJson>* pp, QVErroJson* pErro) {
  pp->reset();
  return classe.prepara(metodo, entrada, inicializacao, sLugar, pp, pErro);
}

std::string QVHexStatus(HRESULT hr) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "0x%08X", static_cast<unsigned>(hr));
  return buf;
}

std::string QVNomeStatus(HRESULT hr) {
  const std::string nome = QVNomeSimbolico(hr);
  return nome.empty() ? QVHexStatus(hr) : nome;
}
