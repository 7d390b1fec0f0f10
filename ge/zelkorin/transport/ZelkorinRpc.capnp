@0xad122494ff71a85a;
# The transport between client programs and the server process: the class
# factory hands out one capability per client object, and every method of
# the object's interface travels as one generic call naming its slot, with
# its parameters in the order of the interface's method table
# (core/QVRPCDLL/QVMetodos.h, docs/transport.md). The schema does not list
# the interfaces' methods: adding or changing one leaves it as it is.

$import "/capnp/c++.capnp".namespace("zk");

# A wire record: its fixed bytes and what it owns (core/QVRPCDLL/QVMarshaller.h).
struct Registro {
  fixo @0 :Data;
  anexos @1 :Data;
}

# One parameter's value, by the parameter's type.
struct Valor {
  union {
    nenhum @0 :Void;        # an out record the callee allocates and did not give
    numero @1 :Int64;       # an integer of any width, checked against it on arrival
    registro @2 :Registro;
    texto @3 :Data;         # a system string: its UTF-16 bytes (empty: no string)
  }
}

interface Objeto {
  # Slot 3 is the first (IQVUnknown's Inicializa_Padrao). entradas: the in
  # and in/out parameters, saidas: the out and in/out ones, each in the
  # method's order; saidas are sent only when hr is a success. A slot the
  # object's interface does not have answers
  # HRESULT_FROM_WIN32(RPC_S_PROCNUM_OUT_OF_RANGE); parameters that are not
  # what the method takes answer RPC_X_BAD_STUB_DATA, before the object sees
  # the call.
  chama @0 (slot :UInt16, entradas :List(Valor)) -> (hr :Int32, saidas :List(Valor));
}

interface Fabrica {
  # By class identifier (16 bytes, the platform's GUID layout). The answer
  # names the object's business interface (iid, 16 bytes), which tells the
  # client which method table the object's slots follow. An unknown class
  # answers REGDB_E_CLASSNOTREG and no object.
  criaObjeto @0 (clsid :Data) -> (hr :Int32, objeto :Objeto, iid :Data);
}
