// A client program's connection to a server process, and the objects made
// through it.
//
//   std::shared_ptr<CQVConexaoZelkorin> conexao;
//   QV_CHECK(CQVConexaoZelkorin::Conecta({.sSocket = "/run/zelkorin.sock"}, &conexao));
//   CQVComPtr<IQVGE_Atendimento> a;
//   QV_CHECK(conexao->CriaObjeto(CLSID_QVGE_Atendimento, IID_IQVGE_Atendimento, a.ppv()));
//
// or, once RegistraClasses() has run, CoCreateInstance as in process. The
// objects are proxies with the very interfaces of the in-process objects;
// releasing one ends its object in the server.
//
// Threads: a connection, and every proxy made through it, belong to the
// thread that connected (each thread has its own event loop, shared by its
// connections). Calls wait for their answer, up to the time limit.
//
// Failures: a connection that is lost makes every later call answer
// RPC_E_DISCONNECTED; a call without an answer in time answers
// RPC_E_TIMEOUT (the connection stays usable); an answer that does not
// unmarshal answers RPC_X_BAD_STUB_DATA.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <capnp/rpc-twoparty.h>
#include <kj/async-io.h>

#include "core/QVRPCDLL/QVMarshaller.h"
#include "ge/zelkorin/transport/ZelkorinRpc.capnp.h"
#include "platform/QVCom.h"


struct QVOpcoesConexao {
  std::string sSocket;    // Unix socket path
  std::string sEndereco;  // "host:port" over TCP; used instead of the socket when given
  std::uint32_t ulTempoLimiteMs = 60000;  // per call, and for connecting
  QVLimitesMarshal limites;  // of what the server may send back
};

class CQVConexaoZelkorin : public std::enable_shared_from_this<CQVConexaoZelkorin> {
 public:
  // S_OK, or HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE) when no server
  // answers at the address.
  [[nodiscard]] static HRESULT Conecta(const QVOpcoesConexao& opcoes, std::shared_ptr<CQVConexaoZelkorin>* pp);
  ~CQVConexaoZelkorin();
  CQVConexaoZelkorin(const CQVConexaoZelkorin&) = delete;
  CQVConexaoZelkorin& operator=(const CQVConexaoZelkorin&) = delete;

  // An object of a class of the server, asked for riid. On failure *ppv is
  // null; an unknown class answers REGDB_E_CLASSNOTREG.
  [[nodiscard]] HRESULT CriaObjeto(REFCLSID clsid, REFIID riid, void** ppv);

  // Registers class objects for QVGE_Atendimento and QVGE_Projeto in this
  // process that make their objects through this connection; revoked by
  // RevogaClasses or when the connection goes (the registration does not
  // keep it alive).
  [[nodiscard]] HRESULT RegistraClasses();
  void RevogaClasses();

  bool Desconectada() const { return m_bDesconectada; }
  const QVOpcoesConexao& Opcoes() const { return m_Opcoes; }

  // ---- for the proxies (and the tests that speak the transport) ----

  zk::Fabrica::Client Fabrica() { return m_Fabrica; }

  // Sends a request and waits for its answer, which lands in *pResposta.
  template <class P, class R>
  [[nodiscard]] HRESULT Chama(capnp::Request<P, R>& req, std::optional<capnp::Response<R>>* pResposta) {
    if (m_bDesconectada) return RPC_E_DISCONNECTED;
    return Espera(req.send().then([pResposta](capnp::Response<R>&& r) { pResposta->emplace(kj::mv(r)); }));
  }

  // Runs what is queued on the event loop without waiting (a proxy's
  // release goes out this way).
  void Bombeia();

 private:
  CQVConexaoZelkorin() = default;
  [[nodiscard]] HRESULT Espera(kj::Promise<void>&& promessa);
  void MarcaDesconectada();

  // Destroyed last: the thread's event loop outlives everything below.
  std::shared_ptr<kj::AsyncIoContext> m_pIo;
  QVOpcoesConexao m_Opcoes;
  kj::Own<kj::AsyncIoStream> m_Stream;
  kj::Own<capnp::TwoPartyVatNetwork> m_Rede;
  kj::Own<capnp::RpcSystem<capnp::rpc::twoparty::VatId>> m_Rpc;
  zk::Fabrica::Client m_Fabrica{nullptr};
  kj::Own<kj::TaskSet::ErrorHandler> m_Erros;
  kj::Own<kj::TaskSet> m_Tarefas;  // before its error handler goes
  std::uint32_t m_cookies[2] = {0, 0};
  bool m_bDesconectada = false;
};
