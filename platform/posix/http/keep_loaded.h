// Keeping the component's library in a process that has used the network.
#pragma once

namespace velandoc::http {

/// From here on the library that holds this code stays loaded, whoever closes it. To be called
/// before the first use of libcurl.
///
/// libcurl's manual advises against running it from a module that may be unloaded: a thread of its
/// own, which looks up a name, can outlast every call. OpenSSL keeps a pointer to a function of
/// this library and calls it for each SSL_CTX of the process that is freed.
void KeepLibraryLoaded();

}  // namespace velandoc::http
