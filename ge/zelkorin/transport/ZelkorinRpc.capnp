@0xad122494ff71a85a;
# The transport between client programs and the server process: the class
# factory hands out one capability per client object; each interface slot is
# one method; each record travels as its fixed bytes and its owned data
# (docs/transport.md). Every method answers the status the object returned.

$import "/capnp/c++.capnp".namespace("zk");

struct Registro {
  fixo @0 :Data;
  anexos @1 :Data;
}

interface QVUnknown {
  inicializaPadrao @0 (regps :Registro) -> (hr :Int32);
  keepAlive @1 () -> (hr :Int32, bOK :Int32);
  getUltimoErro @2 () -> (hr :Int32, erro :Registro);
  # A null out pointer travels as temSaida false.
  funcaoGenerica @3 (ulFuncao :UInt32, regInps :Registro) -> (hr :Int32, temSaida :Bool, saida :Registro);
}

interface Atendimento extends(QVUnknown) {
  buscaPonteiros @0 (regFiltroPs :Registro) -> (hr :Int32, regListaPonteirosPs :Registro, regClientes :Registro);
  buscaRegistros @1 (regPonteirosPs :Registro) -> (hr :Int32, regRegistrosPs :Registro);
  buscaPonteirosAgenda @2 (regFiltroPs :Registro) -> (hr :Int32, regListaPonteirosPs :Registro);
  buscaRegistrosAgenda @3 (regPonteiros :Registro) -> (hr :Int32, regListaServicosPs :Registro);
  leAtendimento @4 (iMA :UInt16, lPosicao :UInt32) -> (hr :Int32, regAtendimento :Registro);
  leAtendimentoLight @5 (iMA :UInt16, lPosicao :UInt32) -> (hr :Int32, regAtendimento :Registro);
  gravaAtendimento @6 (iMA :UInt16, lPosicao :UInt32, regAtendimentoPs :Registro)
      -> (hr :Int32, lPosicaoGravada :UInt32);
  lePropriedades @7 (dwFlags :UInt32) -> (hr :Int32, regPropriedadesPs :Registro);
  gravaPropriedades @8 (regPropriedadesPs :Registro, dwFlags :UInt32) -> (hr :Int32);
  # System strings travel as their UTF-16 bytes (empty: no string).
  buscaLeiautesAtendimento @9 () -> (hr :Int32, bsListaLeiautes :Data);
  buscaLeiautesAtendimentoDFCLAY @10 () -> (hr :Int32, bsListaLeiautes :Data);
  buscaLeiautesAtendimentoDFCMOD @11 () -> (hr :Int32, bsListaLeiautes :Data);
  consistirNumeroAtendimentoPS @12 (lNumeroAtendimento :UInt32) -> (hr :Int32, pbNumeroNaoDuplicado :Int32);
  geraRelatorioAgrupamento @13 (regRelatorio :Registro, cTipoAgrupamento :UInt8) -> (hr :Int32);
  geraRelatorioPeriodo @14 (regRelatorioPs :Registro) -> (hr :Int32);
  geraRelatorioAtendimento @15 (regRelatorioPs :Registro) -> (hr :Int32);
  geraRelatorioControleHoras @16 (regFiltro :Registro) -> (hr :Int32);
  geraRelatorioConsultaAgendamento @17 (regRelConsultaAgendamento :Registro)
      -> (hr :Int32, regRelConsultaAgendamento :Registro);
}

interface Projeto extends(QVUnknown) {
  buscaPonteiros @0 (regFiltro :Registro) -> (hr :Int32, pRegPonteiros :Registro);
  buscaRegistros @1 (regPonteiros :Registro) -> (hr :Int32, pRegLista :Registro);
  leRegistro @2 (lPtr :UInt32) -> (hr :Int32, regps :Registro);
  grava @3 (regProjeto :Registro) -> (hr :Int32, regProjeto :Registro);
}

interface Fabrica {
  # By class identifier (16 bytes, the platform's GUID layout). The answer
  # names the object's business interface (iid, 16 bytes), which tells the
  # client what to cast the capability to. An unknown class answers
  # REGDB_E_CLASSNOTREG and no object.
  criaObjeto @0 (clsid :Data) -> (hr :Int32, objeto :QVUnknown, iid :Data);
}
