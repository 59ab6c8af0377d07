// EditService: where other desktop tools find a running Tamblin on the
// session bus, and the request that asks it to edit an installation.
//
// The request "Orvex_Packager_Edit_Installation" carries four strings: the
// working directory, the spec file, the idb file and the distribution
// directory, an empty string standing for "leave as it is".  The reply is
// one int32, the status: 0 when everything asked for was done, -1 when the
// directory could not be entered or a file could not be opened.  These
// names are the program's public interface and must not change.
#ifndef TAMBLIN_UTIL_EDITSERVICE_H
#define TAMBLIN_UTIL_EDITSERVICE_H

inline constexpr char kEditServiceBusName[] = "com.orvex.Tamblin";
inline constexpr char kEditServiceObjectPath[] = "/com/orvex/Tamblin";
inline constexpr char kEditServiceInterface[] = "com.orvex.Packager";
inline constexpr char kEditInstallationRequest[] = "Orvex_Packager_Edit_Installation";

#endif
