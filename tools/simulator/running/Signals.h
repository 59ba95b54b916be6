#ifndef TOOLS_SIMULATOR_RUNNING_SIGNALS_H
#define TOOLS_SIMULATOR_RUNNING_SIGNALS_H

#include <csignal>

/**
 * Takes the signals that a process may be sent to make it end or do something, and those of its
 * children's ends; signals that are ignored stay ignored. They are let in only while waiting, so
 * none is missed. Until the process ends or becomes another program.
 */
class Signals
{
public:
    Signals();

    /** Waits for the next one. Those that the terminal sends, it has sent to the command, too. */
    int next() const;

    /** To wait with: lets in the ends of children only. */
    const sigset_t& endsOfChildren() const { return m_endsOfChildren; }

    /** Lets them in as before; for the programs that this one becomes. */
    void restore() const;

private:
    sigset_t m_former{};
    sigset_t m_whileWaiting{};
    sigset_t m_endsOfChildren{};
};

#endif
