// The file under a recording: bytes at places. What is written is handed to the system at once and forced to the disk soon after.
// One thread for one of them. Results are Win32 codes, 0 for success.
#pragma once

#include <memory>
#include <string>

#include "platform/win32.h"

class IRecordingFile {
public:
    virtual ~IRecordingFile() = default;
    // `got` is less than `size` only at the end of the file.
    virtual DWORD Read(unsigned __int64 at, void* bytes, DWORD size, DWORD& got) = 0;
    // All of it, or an error: then some of it may stand there.
    virtual DWORD Write(unsigned __int64 at, const void* bytes, DWORD size) = 0;
    // Nothing is left from `size` on.
    virtual DWORD Cut(unsigned __int64 size) = 0;
    // Returns when all that was written is on the disk.
    virtual DWORD Force() = 0;
    virtual DWORD Size(unsigned __int64& size) = 0;
    // Whether the name under which it was opened still leads to it: a file may be moved or removed while it is open.
    virtual bool IsInPlace() { return true; }
    // What forcing it in the background came to since this was last asked.
    virtual DWORD Forced() { return ERROR_SUCCESS; }
};

// A file of the system's. Who opens one to write holds a lock on it, which ends with the program, however that ends: error 32 for
// a second one, after a second. Readers need no lock.
class ORVIK_API CRecordingFile : public IRecordingFile {
public:
    static constexpr DWORD kForceEvery = 2000;  // ms

    // For reading, for any number of programs, while it grows.
    static DWORD OpenToRead(const std::string& path, std::unique_ptr<IRecordingFile>& file);
    // An existing one, for reading and writing. A thread forces what was written to the disk at the latest `forceEvery`
    // milliseconds after it was.
    static DWORD OpenToWrite(const std::string& path, DWORD forceEvery, std::unique_ptr<IRecordingFile>& file);

    // Whether it could be opened to write now: error 32 while somebody has it. It never keeps anybody from opening it.
    static DWORD CheckFree(const std::string& path);

    ~CRecordingFile() override;
    DWORD Read(unsigned __int64 at, void* bytes, DWORD size, DWORD& got) override;
    DWORD Write(unsigned __int64 at, const void* bytes, DWORD size) override;
    DWORD Cut(unsigned __int64 size) override;
    DWORD Force() override;
    DWORD Size(unsigned __int64& size) override;
    bool IsInPlace() override;
    DWORD Forced() override;

private:
    class Forcing;
    CRecordingFile(HANDLE file, const std::string& path);

    HANDLE m_file;
    struct Place;
    std::unique_ptr<Place> m_place;
    std::unique_ptr<Forcing> m_forcing;  // null for reading
};
