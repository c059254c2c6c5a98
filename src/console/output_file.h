// The one writer behind every file that the program writes, and the check of its standard output.
//
// A file system may be full, a file too long for its limit, a reader gone: what was written so far
// is kept, what comes later is dropped, and it is told once a file, with the reason. A buffer that
// fails when it is flushed, or a file that fails when it is closed, is told like any other.
#pragma once

#include <cstdio>
#include <ostream>
#include <streambuf>
#include <string>

// An open file without a buffer. Empties the file of that name, or creates it.
class OutputFile {
public:
    explicit OutputFile(std::string path);
    ~OutputFile() { close(); }
    OutputFile(OutputFile const&) = delete;
    OutputFile& operator=(OutputFile const&) = delete;

    // Whether it could be opened. What is written to one that could not is lost, which is told
    // then: a file that nothing is written to is no loss.
    bool isOpen() const { return descriptor != -1; }
    // An errno: why the file could not be opened or written; 0 while all is well.
    int error() const { return firstError; }
    // False when not all of it is in the file.
    bool write(char const* text, std::size_t size);
    // False when anything was lost. Closes once.
    bool close();

private:
    void fail(int error);
    void tell();

    std::string const path;
    int descriptor;
    int firstError = 0;
    bool told = false;
};

// A stream with a buffer in front of such a file. It is closed with the object.
class OutputStream : public std::ostream {
public:
    explicit OutputStream(std::string path);
    ~OutputStream() override { close(); }

    bool isOpen() const { return buffer.file.isOpen(); }
    // False when anything of the file was lost.
    bool close();

private:
    class Buffer : public std::streambuf {
    public:
        explicit Buffer(std::string path);
        int sync() override;
        OutputFile file;

    private:
        int overflow(int c) override;
        char waiting[4096];
    };
    Buffer buffer;
};

// The same as a stream of the C library; std::fclose closes it and tells what was lost. Null, and
// errno, when it cannot be opened.
std::FILE* openOutput(std::string const& path);

// From here on the reason is kept for which standard output cannot be written.
void checkStandardOutput();
// Writes what waits for standard output; says once in a session that it could not be written whole.
void flushStandardOutput();
