#include "df/qvlibex/QVLog.h"

#include <cstdarg>
#include <cstdio>

#include "df/qvlibex/QVStatus.h"

namespace {

bool EhIdentificador(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// Replaces whole identifiers (template parameter names) in texto.
std::string Substitui(std::string texto, std::string_view nome, std::string_view valor) {
  std::size_t p = 0;
  while ((p = texto.find(nome, p)) != std::string::npos) {
    const bool inicio = p == 0 || !EhIdentificador(texto[p - 1]);
    const bool fim = p + nome.size() >= texto.size() || !EhIdentificador(texto[p + nome.size()]);
    if (inicio && fim) {
      texto.replace(p, nome.size(), valor);
      p += valor.size();
    } else {
      p += nome.size();
    }
  }
  return texto;
}

}  // namespace

std::string QVNomeQualificado(std::string_view s) {
  // "[with I = X; S = Y]" after the signature names the template arguments.
  std::string_view com;
  if (const std::size_t w = s.find(" [with "); w != std::string_view::npos) {
    com = s.substr(w + 7);
    if (!com.empty() && com.back() == ']') com.remove_suffix(1);
    s = s.substr(0, w);
  }
  // The parameter list is the first '(' outside template brackets; the name
  // is what stands before it, after the last space outside brackets (the
  // return type, when there is one).
  int nivel = 0;
  std::size_t abre = std::string_view::npos;
  std::size_t inicio = 0;
  for (std::size_t i = 0; i < s.size(); ++i) {
    const char c = s[i];
    if (c == '<') {
      // "operator<" and "operator<<" are names, not brackets.
      if (i >= 8 && s.substr(i - 8, 8) == "operator") continue;
      ++nivel;
    } else if (c == '>') {
      if (nivel > 0) --nivel;
    } else if (c == ' ' && nivel == 0) {
      inicio = i + 1;
    } else if (c == '(' && nivel == 0) {
      // "operator()" keeps its first pair of parentheses.
      if (i >= 8 && s.substr(i - 8, 8) == "operator" && i + 1 < s.size() && s[i + 1] == ')') {
        ++i;
        continue;
      }
      abre = i;
      break;
    }
  }
  std::string nome(s.substr(inicio, abre == std::string_view::npos ? std::string_view::npos : abre - inicio));
  while (!com.empty()) {
    const std::size_t fim = com.find("; ");
    const std::string_view par = com.substr(0, fim);
    if (const std::size_t igual = par.find(" = "); igual != std::string_view::npos)
      nome = Substitui(std::move(nome), par.substr(0, igual), par.substr(igual + 3));
    if (fim == std::string_view::npos) break;
    com.remove_prefix(fim + 2);
  }
  return nome;
}

std::string QVNomeFonte(std::string_view arquivo) {
  if (const std::size_t barra = arquivo.find_last_of('/'), ponto = arquivo.find_last_of('.');
      ponto != std::string_view::npos && (barra == std::string_view::npos || ponto > barra))
    arquivo = arquivo.substr(0, ponto);
  std::size_t corte = arquivo.size();
  for (int i = 0; i < 3 && corte != std::string_view::npos && corte > 0; ++i)
    corte = arquivo.find_last_of('/', corte - 1);
  if (corte != std::string_view::npos && corte < arquivo.size()) arquivo = arquivo.substr(corte + 1);
  return std::string(arquivo);
}

bool QVTolerado(HRESULT hr, std::initializer_list<HRESULT> tolerados) {
  for (HRESULT t : tolerados)
    if (t == hr) return true;
  return false;
}

std::string QVFormataFalhaHr(std::string_view expressao, HRESULT hr) {
  const std::string texto = "hr = " + std::string(expressao);
  const int sev = HRESULT_SEVERITY(hr);
  const int fac = HRESULT_FACILITY(hr);
  const int cod = HRESULT_CODE(hr);
  const std::string mensagem = QVDescricaoHResult(hr);
  const std::string simbolo = QVNomeSimbolico(hr);
  char buf[2048];
  std::snprintf(buf, sizeof buf, "%s\t%s = %#X %s\tSEVERITY = %d %s\tFACILITY = %d %s\tCODE = %d %s\tDescrição = %s",
                texto.c_str(), "hr", static_cast<unsigned>(hr), mensagem.c_str(), sev, QVNomeSeveridade(sev), fac,
                QVNomeFacility(fac), cod, QVNomeErroWin32(static_cast<std::uint32_t>(cod)), simbolo.c_str());
  return buf;
}

std::string QVFormataFalhaValor(std::string_view expressao, std::string_view variavel, std::int64_t valor,
                                HRESULT hr) {
  const std::string e(expressao), v(variavel), d = QVDescricaoHResult(hr);
  char buf[2048];
  std::snprintf(buf, sizeof buf, "%s\t%s = %lld\tHR = %#X\tDescrição = %s", e.c_str(), v.c_str(),
                static_cast<long long>(valor), static_cast<unsigned>(hr), d.c_str());
  return buf;
}

std::string QVFormataFalhaArquivo(HRESULT hr, std::string_view arquivo, std::int64_t posicao, std::int64_t registro,
                                  std::int64_t quantidadeRegistros) {
  const std::string a(arquivo), d = QVDescricaoHResult(hr);
  char buf[2048];
  std::snprintf(buf, sizeof buf, "hr = 0x%08X\tDescrição = %s\tArquivo = %s\tPosição = %d\tRegistro = %d\tQtd. Registros = %lld",
                static_cast<unsigned>(hr), d.c_str(), a.c_str(), static_cast<int>(posicao), static_cast<int>(registro),
                static_cast<long long>(quantidadeRegistros));
  return buf;
}

std::string QVFormataFalhaArquivoTamanho(HRESULT hr, std::string_view arquivo, std::int64_t posicao,
                                         std::int64_t registro, std::int64_t tamanho) {
  const std::string a(arquivo), d = QVDescricaoHResult(hr);
  char buf[2048];
  std::snprintf(buf, sizeof buf, "hr = 0x%08X\tDescrição = %s\tArquivo = %s\tPosição = %d\tRegistro = %d\tGetLength = %lld",
                static_cast<unsigned>(hr), d.c_str(), a.c_str(), static_cast<int>(posicao), static_cast<int>(registro),
                static_cast<long long>(tamanho));
  return buf;
}

void QVEscreveLinhaErroTexto(const IQVDF_Profiler* pSink, std::string_view funcao, std::string_view fonte, int linha,
                             std::string mensagem, std::vector<QVParametroLog> parametros) {
  QVRegistroProfiler reg;
  reg.tipo = EQVTipoProfiler::Erro;
  reg.sink = pSink;
  reg.classeFuncao = funcao;
  reg.arquivo = fonte;
  reg.linha = linha;
  reg.log = std::move(mensagem);
  reg.parametros = std::move(parametros);
  QVProfilerEscreve(reg);
}

void QVEscreveLinhaErro(const IQVDF_Profiler* pSink, std::string_view funcao, std::string_view fonte, int linha,
                        const char* formato, ...) {
  char buf[4096];
  va_list args;
  va_start(args, formato);
  std::vsnprintf(buf, sizeof buf, formato, args);
  va_end(args);
  QVEscreveLinhaErroTexto(pSink, funcao, fonte, linha, buf);
}

void QVLogaFalhaHrEm(std::string_view funcao, std::string_view fonte, int linha, std::string_view expressao,
                     HRESULT hr, std::vector<QVParametroLog> parametros) {
  try {
    QVEscreveLinhaErroTexto(QVSinkAtual(), funcao, fonte, linha, QVFormataFalhaHr(expressao, hr),
                            std::move(parametros));
  } catch (...) {
    // Logging never changes the outcome: the status is returned as it was.
  }
}

void QVLogaFalhaHr(const QVLocalFonte& local, std::string_view expressao, HRESULT hr,
                   std::vector<QVParametroLog> parametros) {
  try {
    QVLogaFalhaHrEm(QVNomeQualificado(local.assinatura), QVNomeFonte(local.arquivo), local.linha, expressao, hr,
                    std::move(parametros));
  } catch (...) {
  }
}

bool QVFalhaNaoTolerada(const QVLocalFonte& local, const char* expressao, HRESULT hr,
                        std::initializer_list<HRESULT> tolerados) {
  if (SUCCEEDED(hr) || QVTolerado(hr, tolerados)) return false;
  QVLogaFalhaHr(local, expressao, hr);
  return true;
}

HRESULT QVLogaSeFalhou(const QVLocalFonte& local, const char* expressao, HRESULT hr) {
  if (FAILED(hr)) QVLogaFalhaHr(local, expressao, hr);
  return hr;
}
