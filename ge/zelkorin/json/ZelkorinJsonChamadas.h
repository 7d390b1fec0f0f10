// Calls of the server's methods by class and method name, their parameters
// in JSON: what a scripting client (zelkorin call) needs on top of the
// records' JSON form. Driven by the interfaces' method tables
// (core/QVRPCDLL/QVMetodos.h), so every method of both interfaces, those of
// IQVUnknown included, is reachable without a line of its own.
//
//   const QVClasseJson* classe = QVProcuraClasseJson("QVGE_Projeto");
//   std::unique_ptr<IQVChamadaJson> chamada;
//   QVPreparaChamadaJson(*classe, "LeRegistro", {{"lPtr", 1}}, inicializacao, "chamadas[0]", &chamada, &erro);
//   void* p;  // CoCreateInstance(classe->clsid, nullptr, CLSCTX_ALL, classe->iid, &p), or through a connection
//   HRESULT hr = chamada->Executa(p);
//   QVJson saida = chamada->Saida();  // {"regps": {...}}
//   chamada.reset();  // frees what the call handed back, deeply
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "ge/zelkorin/ZelkorinInterfaces.h"
#include "ge/zelkorin/json/ZelkorinJson.h"

// One call, ready to go: its in values read, its out values empty. Whatever
// either holds is freed, deeply, when it goes.
class IQVChamadaJson {
 public:
  virtual ~IQVChamadaJson() = default;
  virtual std::string_view Metodo() const = 0;
  // Calls the method on an object of the class the call was prepared for:
  // the pointer its creation gave for the class's iid.
  virtual HRESULT Executa(void* pInterface) = 0;
  // The out and in/out values, keyed by parameter name, in the method's
  // order (an allocated out record that came back null is null).
  virtual QVJson Saida() = 0;
};

struct QVClasseJson {
  std::string_view nome;
  CLSID clsid;
  IID iid;  // the interface its objects are asked for
  // The object's IQVUnknown, from the pointer its creation gave for iid.
  IQVUnknown* (*comoUnknown)(void* pInterface);
  HRESULT (*prepara)
  (std::string_view metodo, const QVJson& entrada, const _REG_DF_INICIALIZAPS& inicializacao, const std::string& sLugar,
   std::unique_ptr<IQVChamadaJson>* pp, QVErroJson* pErro);
};

// QVGE_Atendimento (over IQVGE_Atendimento) and QVGE_Projeto (IQVGE_Projeto).
std::span<const QVClasseJson> QVClassesJson();
// The class of that exact name, or null.
const QVClasseJson* QVProcuraClasseJson(std::string_view nome);

// Prepares metodo of classe, its in and in/out parameters read from entrada
// (an object keyed by parameter name, or null; an omitted parameter is
// zero). The record of Inicializa_Padrao starts as inicializacao: the
// fields entrada names replace its own, and its CRC is computed again
// unless entrada gives uiCRC. Places in errors are under sLugar
// ("chamadas[2]": "chamadas[2].metodo", "chamadas[2].entrada.lPosicao").
// E_INVALIDARG with *pErro for an unknown method, an unknown or out-only
// parameter, or a value that does not read; *pp is then empty.
[[nodiscard]] HRESULT QVPreparaChamadaJson(const QVClasseJson& classe, std::string_view metodo, const QVJson& entrada,
                                           const _REG_DF_INICIALIZAPS& inicializacao, const std::string& sLugar,
                                           std::unique_ptr<IQVChamadaJson>* pp, QVErroJson* pErro);

// How an answer names a status: "0x80004001" and "E_NOTIMPL" (the hex
// again when the status has no symbolic name).
std::string QVHexStatus(HRESULT hr);
std::string QVNomeStatus(HRESULT hr);
