#include "ge/zelkorin/transport/CQVFluxoMensagens.h"

#include <algorithm>
#include <bit>
#include <capnp/serialize.h>
#include <cstring>
#include <limits>
#include <utility>

namespace {

using Reserva = CQVOrcamentoMensagens::CReserva;

static_assert(std::endian::native == std::endian::little, "the framing's numbers are read as this machine's");

// The library's own reader refuses more; so do we, before reading them.
constexpr std::uint32_t kMaxSegmentos = 512;
constexpr std::size_t kBytesPalavra = sizeof(capnp::word);
constexpr std::size_t kPrazoEsgotado = std::numeric_limits<std::size_t>::max();

kj::byte* Bytes(capnp::word* p) { return reinterpret_cast<kj::byte*>(p); }

std::uint32_t U32(const kj::Array<capnp::word>& palavras, std::size_t i) {
  std::uint32_t v;
  std::memcpy(&v, reinterpret_cast<const kj::byte*>(palavras.begin()) + 4 * i, sizeof v);
  return v;
}

// What the peer is told when the connection ends for a reason that is not
// one of ours.
const char* MotivoPlano(capnp::rpc::Exception::Type tipo) {
  switch (tipo) {
    case capnp::rpc::Exception::Type::DISCONNECTED: return "conexão encerrada";
    case capnp::rpc::Exception::Type::OVERLOADED: return "servidor sobrecarregado";
    case capnp::rpc::Exception::Type::UNIMPLEMENTED: return "operação não suportada pelo servidor";
    default: return "erro de protocolo";
  }
}

}  // namespace

// ---- CQVOrcamentoMensagens ----------------------------------------------------

CQVOrcamentoMensagens::CReserva::CReserva(CReserva&& o) noexcept
    : m_pOrcamento(std::exchange(o.m_pOrcamento, nullptr)), m_uiBytes(std::exchange(o.m_uiBytes, 0)) {}

CQVOrcamentoMensagens::CReserva& CQVOrcamentoMensagens::CReserva::operator=(CReserva&& o) noexcept {
  if (this != &o) {
    if (m_pOrcamento != nullptr) m_pOrcamento->Libera(m_uiBytes);
    m_pOrcamento = std::exchange(o.m_pOrcamento, nullptr);
    m_uiBytes = std::exchange(o.m_uiBytes, 0);
  }
  return *this;
}

CQVOrcamentoMensagens::CReserva::~CReserva() {
  if (m_pOrcamento != nullptr) m_pOrcamento->Libera(m_uiBytes);
}

kj::Promise<CQVOrcamentoMensagens::CReserva> CQVOrcamentoMensagens::Reserva(std::uint64_t n) {
  auto paf = kj::newPromiseAndFulfiller<CReserva>();
  m_Fila.push_back({n, kj::mv(paf.fulfiller)});
  Atende();
  return kj::mv(paf.promise);
}

void CQVOrcamentoMensagens::Libera(std::uint64_t n) {
  m_uiEmUso -= n;
  Atende();
}

void CQVOrcamentoMensagens::Atende() {
  while (!m_Fila.empty()) {
    Espera& e = m_Fila.front();
    if (!e.atende->isWaiting()) {
      m_Fila.pop_front();
      continue;
    }
    if (m_uiTotal - m_uiEmUso < e.n) return;
    const std::uint64_t n = e.n;
    kj::Own<kj::PromiseFulfiller<CReserva>> atende = kj::mv(e.atende);
    m_Fila.pop_front();
    m_uiEmUso += n;
    atende->fulfill(CReserva(this, n));
  }
}

// ---- CQVFluxoMensagens --------------------------------------------------------

struct CQVFluxoMensagens::Leitura {
  capnp::word cabecalho;  // segment count - 1, size of the first segment
  kj::Array<capnp::word> tabela;
  kj::Array<capnp::word> palavras;  // the whole message, table first
  CQVOrcamentoMensagens::CReserva reserva;
};

CQVFluxoMensagens::CQVFluxoMensagens(kj::AsyncIoStream& stream, kj::Timer& timer, CQVOrcamentoMensagens& orcamento,
                                     const QVLimitesFluxo& limites, Falha aoFalhar)
    : m_Stream(stream), m_Timer(timer), m_Orcamento(orcamento), m_Limites(limites), m_AoFalhar(std::move(aoFalhar)) {}

void CQVFluxoMensagens::Recusa(HRESULT hr, const std::string& motivo) {
  if (m_sMotivo.empty()) {
    m_sMotivo = motivo;
    if (m_AoFalhar) m_AoFalhar(hr, motivo);
  }
  kj::throwFatalException(kj::Exception(kj::Exception::Type::FAILED, __FILE__, __LINE__, kj::str(motivo.c_str())));
}

kj::Promise<void> CQVFluxoMensagens::EsperaRespostas() {
  if (m_ulPendentes < m_Limites.ulMaxPendentes) return kj::READY_NOW;
  auto paf = kj::newPromiseAndFulfiller<void>();
  m_pEscoou = kj::mv(paf.fulfiller);
  return kj::mv(paf.promise);
}

kj::Promise<kj::Maybe<capnp::MessageReaderAndFds>> CQVFluxoMensagens::tryReadMessage(
    kj::ArrayPtr<kj::AutoCloseFd>, capnp::ReaderOptions opcoes, kj::ArrayPtr<capnp::word>) {
  return EsperaRespostas().then([this, opcoes]() {
    auto leitura = kj::heap<Leitura>();
    Leitura& l = *leitura;
    m_uiTamanhoAtual = 0;
    m_uiRecebidoAtual = 0;
    // No time limit before the first byte: a client may stay idle between calls.
    return m_Stream.tryRead(&l.cabecalho, 1, kBytesPalavra)
        .then([this, &l, opcoes](std::size_t n) -> kj::Promise<kj::Maybe<capnp::MessageReaderAndFds>> {
          if (n == 0) return kj::Maybe<capnp::MessageReaderAndFds>(nullptr);
          m_uiRecebidoAtual = n;
          return LeComPrazo(Bytes(&l.cabecalho) + n, kBytesPalavra - n).then([this, &l, opcoes]() {
            return LeCorpo(l, opcoes);
          });
        })
        .attach(kj::mv(leitura));
  });
}

kj::Promise<kj::Maybe<capnp::MessageReaderAndFds>> CQVFluxoMensagens::LeCorpo(Leitura& l,
                                                                             capnp::ReaderOptions opcoes) {
  std::uint32_t primeira[2];
  std::memcpy(primeira, &l.cabecalho, sizeof primeira);
  if (primeira[0] >= kMaxSegmentos)
    Recusa(RPC_X_BAD_STUB_DATA, "mensagem com " + std::to_string(primeira[0] + 1ull) + " segmentos; o máximo é " +
                                    std::to_string(kMaxSegmentos));
  const std::uint32_t ulSegmentos = primeira[0] + 1;
  const std::size_t palavrasTabela = ulSegmentos / 2 + 1;
  l.tabela = kj::heapArray<capnp::word>(palavrasTabela);
  std::memcpy(l.tabela.begin(), &l.cabecalho, kBytesPalavra);
  return LeComPrazo(Bytes(l.tabela.begin() + 1), (palavrasTabela - 1) * kBytesPalavra)
      .then([this, &l, ulSegmentos, palavrasTabela]() {
        std::uint64_t palavrasCorpo = 0;
        for (std::uint32_t i = 0; i < ulSegmentos; ++i) palavrasCorpo += U32(l.tabela, i + 1);
        const std::uint64_t bytes = (palavrasTabela + palavrasCorpo) * kBytesPalavra;
        m_uiTamanhoAtual = bytes;
        const std::uint64_t limite = std::min(m_Limites.uiMaxMensagem, m_Orcamento.Total());
        if (bytes > limite)
          Recusa(RPC_X_BAD_STUB_DATA, "mensagem de " + std::to_string(bytes) + " bytes acima do limite de " +
                                          std::to_string(limite) + " bytes");
        // Waiting for the budget is bounded like any other wait within a message.
        return m_Orcamento.Reserva(bytes)
            .then([](Reserva&& r) { return kj::Maybe<Reserva>(kj::mv(r)); })
            .exclusiveJoin(m_Timer.afterDelay(m_Limites.ulTempoOciosoMs * kj::MILLISECONDS).then([]() {
              return kj::Maybe<Reserva>(nullptr);
            }))
            .then([this, &l, bytes, palavrasTabela, palavrasCorpo](kj::Maybe<Reserva>&& r) {
              KJ_IF_MAYBE(reserva, r) {
                l.reserva = kj::mv(*reserva);
              } else {
                Recusa(E_OUTOFMEMORY, "mensagem de " + std::to_string(bytes) + " bytes esperou " +
                                          std::to_string(m_Limites.ulTempoOciosoMs) +
                                          " ms pela memória de mensagens do servidor (" +
                                          std::to_string(m_Orcamento.EmUso()) + " de " +
                                          std::to_string(m_Orcamento.Total()) + " bytes em uso)");
              }
              l.palavras = kj::heapArray<capnp::word>(palavrasTabela + palavrasCorpo);
              std::memcpy(l.palavras.begin(), l.tabela.begin(), palavrasTabela * kBytesPalavra);
              l.tabela = nullptr;
              return LeComPrazo(Bytes(l.palavras.begin() + palavrasTabela), palavrasCorpo * kBytesPalavra);
            });
      })
      .then([this, &l, opcoes]() {
        kj::Own<capnp::MessageReader> leitor = kj::heap<capnp::FlatArrayMessageReader>(l.palavras.asPtr(), opcoes)
                                                   .attach(kj::mv(l.palavras), kj::mv(l.reserva));
        // A message the RPC system cannot read is its to refuse; only calls
        // and bootstraps, which always get an answer, are counted.
        KJ_IF_MAYBE(e, kj::runCatchingExceptions([&]() {
                      const auto tipo = leitor->getRoot<capnp::rpc::Message>().which();
                      if (tipo == capnp::rpc::Message::CALL || tipo == capnp::rpc::Message::BOOTSTRAP) ++m_ulPendentes;
                    })) {
          (void)e;
        }
        return kj::Maybe<capnp::MessageReaderAndFds>(capnp::MessageReaderAndFds{kj::mv(leitor), nullptr});
      });
}

kj::Promise<void> CQVFluxoMensagens::LeComPrazo(kj::byte* p, std::size_t n) {
  if (n == 0) return kj::READY_NOW;
  return m_Stream.tryRead(p, 1, n)
      .exclusiveJoin(
          m_Timer.afterDelay(m_Limites.ulTempoOciosoMs * kj::MILLISECONDS).then([]() { return kPrazoEsgotado; }))
      .then([this, p, n](std::size_t lidos) -> kj::Promise<void> {
        if (lidos == kPrazoEsgotado) {
          std::string motivo = "mensagem incompleta: nada chegou em " + std::to_string(m_Limites.ulTempoOciosoMs) +
                               " ms (recebidos " + std::to_string(m_uiRecebidoAtual);
          if (m_uiTamanhoAtual != 0) motivo += " de " + std::to_string(m_uiTamanhoAtual);
          Recusa(HRESULT_FROM_WIN32(ERROR_TIMEOUT), motivo + " bytes)");
        }
        // The peer went away mid-message: an end, not a fault of ours to log.
        if (lidos == 0)
          return KJ_EXCEPTION(DISCONNECTED, "conexão encerrada no meio de uma mensagem");
        m_uiRecebidoAtual += lidos;
        return LeComPrazo(p + lidos, n - lidos);
      });
}

void CQVFluxoMensagens::RespostaEnviada() {
  if (m_ulPendentes > 0) --m_ulPendentes;
  if (m_pEscoou.get() != nullptr && m_ulPendentes < m_Limites.ulMaxPendentes) {
    kj::Own<kj::PromiseFulfiller<void>> escoou = kj::mv(m_pEscoou);
    escoou->fulfill();
  }
}

kj::Promise<void> CQVFluxoMensagens::writeMessage(kj::ArrayPtr<const int>,
                                                 kj::ArrayPtr<const kj::ArrayPtr<const capnp::word>> segmentos) {
  capnp::SegmentArrayMessageReader leitor(segmentos);
  const capnp::rpc::Message::Reader mensagem = leitor.getRoot<capnp::rpc::Message>();
  switch (mensagem.which()) {
    case capnp::rpc::Message::RETURN:
      return capnp::writeMessage(m_Stream, segmentos).then([this]() { RespostaEnviada(); });
    case capnp::rpc::Message::ABORT:
      return EnviaAbort(mensagem.getAbort());
    default:
      return capnp::writeMessage(m_Stream, segmentos);
  }
}

kj::Promise<void> CQVFluxoMensagens::EnviaAbort(capnp::rpc::Exception::Reader original) {
  const capnp::rpc::Exception::Type tipo = original.getType();
  std::string motivo;
  if (m_bEncerrando) {
    motivo = "servidor encerrando";
  } else if (!m_sMotivo.empty()) {
    motivo = m_sMotivo;
  } else {
    motivo = MotivoPlano(tipo);
    if (tipo != capnp::rpc::Exception::Type::DISCONNECTED) {
      m_sMotivo = motivo;
      // The library's reason may run over several lines; the log has one per fault.
      std::string razao = original.getReason().cStr();
      std::replace_if(razao.begin(), razao.end(), [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
      if (m_AoFalhar) m_AoFalhar(RPC_X_BAD_STUB_DATA, razao);
    }
  }
  auto mensagem = kj::heap<capnp::MallocMessageBuilder>(64);
  auto abort = mensagem->initRoot<capnp::rpc::Message>().initAbort();
  abort.setReason(motivo.c_str());
  abort.setType(tipo);
  auto escrita = capnp::writeMessage(m_Stream, *mensagem);
  return escrita.attach(kj::mv(mensagem));
}

kj::Promise<void> CQVFluxoMensagens::writeMessages(
    kj::ArrayPtr<kj::ArrayPtr<const kj::ArrayPtr<const capnp::word>>> mensagens) {
  kj::Promise<void> escritas = kj::READY_NOW;
  for (auto segmentos : mensagens)
    escritas = escritas.then([this, segmentos]() { return writeMessage(nullptr, segmentos); });
  return escritas;
}

kj::Promise<void> CQVFluxoMensagens::end() {
  // A peer that is already gone has nothing left to shut.
  KJ_IF_MAYBE(e, kj::runCatchingExceptions([&]() { m_Stream.shutdownWrite(); })) { (void)e; }
  return kj::READY_NOW;
}
