// One connection's messages as the server's RPC system sees them, with the
// limits that keep a misbehaving client from growing the server:
//
//  - Framing, read here rather than by the library: a message is
//      u32 segment count - 1, u32 size of each segment in words, padding
//      to a whole word, then the segments (all little-endian),
//    so its whole size is known once its table has arrived, before its
//    body is read. A message over the size limit (or with more than 512
//    segments) is refused there.
//  - Budget: the bytes of a message are reserved from the server-wide
//    CQVOrcamentoMensagens when its table has arrived and given back when
//    the RPC system is done with the message. A message that does not fit
//    waits for the budget (reading that connection stops meanwhile) for at
//    most the idle time-out, then its connection is dropped.
//  - Idle time-out: once the first byte of a message has arrived, a read
//    that brings nothing for that long drops the connection. A connection
//    may stay silent between messages for as long as it likes.
//  - Calls outstanding: a call (or bootstrap) counts from its arrival until
//    its answer has been written to the socket. At the limit, reading stops
//    until an answer has gone out, so a client that does not read its
//    answers holds at most that many of them in the server.
//  - Abort: the reason the RPC system sends a peer when it ends a connection
//    is replaced by a plain one (no internal check expressions); the
//    original goes to the error log, once per connection.
#pragma once

#include <capnp/rpc.capnp.h>
#include <capnp/serialize-async.h>
#include <cstdint>
#include <functional>
#include <kj/async-io.h>
#include <kj/timer.h>
#include <list>
#include <string>

#include "platform/QVHResult.h"

// Bytes of incoming messages held in memory at once, over every connection
// of the server. Reservations are served first come, first served: a large
// message is not overtaken for ever by small ones. Single-threaded (the
// server's event loop).
class CQVOrcamentoMensagens {
 public:
  // Gives its bytes back when it goes.
  class CReserva {
   public:
    CReserva() = default;
    CReserva(CReserva&& o) noexcept;
    CReserva& operator=(CReserva&& o) noexcept;
    ~CReserva();

   private:
    friend class CQVOrcamentoMensagens;
    CReserva(CQVOrcamentoMensagens* p, std::uint64_t n) : m_pOrcamento(p), m_uiBytes(n) {}
    CQVOrcamentoMensagens* m_pOrcamento = nullptr;
    std::uint64_t m_uiBytes = 0;
  };

  explicit CQVOrcamentoMensagens(std::uint64_t uiTotal) : m_uiTotal(uiTotal) {}

  // Resolves once n bytes (at most Total()) are reserved.
  kj::Promise<CReserva> Reserva(std::uint64_t n);
  std::uint64_t Total() const { return m_uiTotal; }
  std::uint64_t EmUso() const { return m_uiEmUso; }

 private:
  struct Espera {
    std::uint64_t n;
    kj::Own<kj::PromiseFulfiller<CReserva>> atende;
  };
  void Libera(std::uint64_t n);
  // Drops the waiters that went away and serves those at the head that fit.
  void Atende();

  const std::uint64_t m_uiTotal;
  std::uint64_t m_uiEmUso = 0;
  std::list<Espera> m_Fila;
};

struct QVLimitesFluxo {
  std::uint64_t uiMaxMensagem = 0;  // bytes, table included
  std::uint32_t ulMaxPendentes = 16;  // calls whose answers have not gone out
  std::uint32_t ulTempoOciosoMs = 30000;
};

class CQVFluxoMensagens final : public capnp::MessageStream {
 public:
  // Told once, of the first fault that ends the connection: a message
  // refused here, or a protocol error the RPC system aborted on. Ends that
  // are not faults (the peer closed, the server is stopping) are not told.
  using Falha = std::function<void(HRESULT hr, const std::string& motivo)>;

  CQVFluxoMensagens(kj::AsyncIoStream& stream, kj::Timer& timer, CQVOrcamentoMensagens& orcamento,
                    const QVLimitesFluxo& limites, Falha aoFalhar);

  // The server is stopping: the abort it sends says so and is no fault.
  void Encerrando() { m_bEncerrando = true; }
  std::uint32_t Pendentes() const { return m_ulPendentes; }

  // ---- capnp::MessageStream ----
  kj::Promise<kj::Maybe<capnp::MessageReaderAndFds>> tryReadMessage(kj::ArrayPtr<kj::AutoCloseFd> fdSpace,
                                                                     capnp::ReaderOptions opcoes,
                                                                     kj::ArrayPtr<capnp::word> scratch) override;
  kj::Promise<void> writeMessage(kj::ArrayPtr<const int> fds,
                                 kj::ArrayPtr<const kj::ArrayPtr<const capnp::word>> segmentos) override;
  kj::Promise<void> writeMessages(
      kj::ArrayPtr<kj::ArrayPtr<const kj::ArrayPtr<const capnp::word>>> mensagens) override;
  kj::Maybe<int> getSendBufferSize() override { return nullptr; }
  kj::Promise<void> end() override;

 private:
  struct Leitura;

  kj::Promise<void> EsperaRespostas();
  kj::Promise<kj::Maybe<capnp::MessageReaderAndFds>> LeCorpo(Leitura& l, capnp::ReaderOptions opcoes);
  // Reads exactly n bytes, each read bounded by the idle time-out.
  kj::Promise<void> LeComPrazo(kj::byte* p, std::size_t n);
  void RespostaEnviada();
  kj::Promise<void> EnviaAbort(capnp::rpc::Exception::Reader original);
  // Tells the fault (the first only) and throws the exception that ends the
  // connection; motivo is also what the peer is told.
  [[noreturn]] void Recusa(HRESULT hr, const std::string& motivo);

  kj::AsyncIoStream& m_Stream;
  kj::Timer& m_Timer;
  CQVOrcamentoMensagens& m_Orcamento;
  const QVLimitesFluxo m_Limites;
  Falha m_AoFalhar;
  std::uint32_t m_ulPendentes = 0;
  kj::Own<kj::PromiseFulfiller<void>> m_pEscoou;  // the read waiting for answers to go out
  std::uint64_t m_uiTamanhoAtual = 0;  // of the message being read, and how much of it arrived
  std::uint64_t m_uiRecebidoAtual = 0;
  std::string m_sMotivo;  // the fault told, if any
  bool m_bEncerrando = false;
};
