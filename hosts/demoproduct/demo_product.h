// The product of the demonstrations and tests of the about box: a small package with the code that
// the box asks for by default, and patches that are made on the spot with the installer's own
// functions.
//
// All of them work on the machine (under Wine: on the prefix), need the rights of an administrator
// there, and throw std::runtime_error when the installer refuses, or when the suite itself is
// installed: it is left alone.
#pragma once

#include <string>

namespace mvp {

// Installs the package at `strPackage`, an absolute path; what an earlier run has left is removed
// first.
void InstallDemoProduct(const std::string& strPackage);

// Makes patch `nNumber` (1 to 9) of the installed product and applies it. Its internal version is
// `pszVersion`; null: it has none.
void PatchDemoProduct(int nNumber, const char* pszVersion);

// Removes the product with its patches; nothing happens when it is not there.
void RemoveDemoProduct();

}  // namespace mvp
