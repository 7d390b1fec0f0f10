// The class objects of the server's two classes, QVGE_Atendimento and
// QVGE_Projeto, and their registration in the process, after which
// CoCreateInstance(CLSID_QVGE_Atendimento, ...) makes a new client object.
#pragma once

#include "platform/QVCom.h"

// Registers both class objects; a second call does nothing.
[[nodiscard]] HRESULT QVRegistraClassesZelkorin();
// Revokes them (objects already made live on).
void QVRevogaClassesZelkorin();
// Server locks taken by clients (IClassFactory::LockServer).
int QVTravasServidor();
