// The initialise/finalise base of every object with resources.
//
// Life cycle: Inicializa copies the connection identity and runs
// OnInicializa; the object is initialised when that succeeds. Finaliza runs
// OnFinaliza on an initialised object and leaves it uninitialised (a
// failure of OnFinaliza is returned, the object is uninitialised anyway).
// Derived classes open their resources in OnInicializa and release them in
// OnFinaliza, calling the base's hook first and last respectively.
#pragma once

#include "df/qvlibex/QVProfilerEmpresa.h"
#include "platform/QVHResult.h"

class CQVInicializador : public CQVProfilerEmpresa {
 public:
  CQVInicializador() = default;
  ~CQVInicializador() override = default;
  CQVInicializador(const CQVInicializador&) = delete;
  CQVInicializador& operator=(const CQVInicializador&) = delete;

  [[nodiscard]] HRESULT Inicializa(const IQVDF_Profiler* pProfiler);
  [[nodiscard]] HRESULT Finaliza();
  bool EstaInicializado() const { return m_bInicializado; }

 protected:
  [[nodiscard]] virtual HRESULT OnInicializa() { return S_OK; }
  [[nodiscard]] virtual HRESULT OnFinaliza() { return S_OK; }
  // Hooks of the host library, in its order; unused by default.
  [[nodiscard]] virtual HRESULT OnResetBuffer() { return S_OK; }
  [[nodiscard]] virtual HRESULT OnLerParametros() { return S_OK; }
  [[nodiscard]] virtual HRESULT OnSetMostrarMensagens(bool) { return S_OK; }
  [[nodiscard]] virtual HRESULT ForcarReinicializacaoBaseParaRotinas() { return S_OK; }

  // For derived initialisations that do not go through Inicializa.
  void MarcaInicializado(bool b) { m_bInicializado = b; }

 private:
  bool m_bInicializado = false;
};
