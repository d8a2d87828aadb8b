// The options of "norvane run".

#include "core/sim_state.h"
#include "frontends/cli/balance_options.h"
#include "frontends/cli/command_options.h"
#include "frontends/cli/frame_options.h"
#include "frontends/cli/probe_options.h"
#include "frontends/cli/run_command.h"
#include "frontends/cli/steady_options.h"

#include <memory>

namespace norvane {

namespace {

constexpr const char* runStatusHelp =
    "Exit status:\n"
    "  0  the run reached its stop step, or with --until-steady came to rest\n"
    "  1  the model ended the run (negative density, or a value that no gas has)\n"
    "  2  bad use of the command line\n"
    "  3  the geometry cannot be run, or a check refuses it\n"
    "  4  a file cannot be read or written\n"
    "  5  stopped early, by a signal or by the value 1 in the file checkstop\n\n"
    "Ctrl-C finishes the step in hand and ends the run in order; a second Ctrl-C ends it at once.";

constexpr const char* runHelp =
    "Load a geometry and run it to its end.\n\n"
    "The results lie beside the geometry m.gmt: m_out, the table of the latest plot, m_log, a line for each logged\n"
    "step (key LT), m_state with --save or key ST, pictures with --snapshots or key FT, m_frames.nc with --frames,\n"
    "m_probes.csv with --probe or a file m.probes, m_balance.csv with --balance, m_checkpoint.nc with\n"
    "--checkpoint-every.\n\n"
    "A word @FILE stands for the options in that file, one on a line with its value: --probe C7:T,p. Lines that begin\n"
    "with # are left out.";

} // namespace

Command addRun(CLI::App& app) {
    const auto kept = std::make_shared<RunOptions>();
    RunOptions& options = *kept;
    CLI::App* run = app.add_subcommand("run", runHelp);
    addGeometry(run, options.geometry);
    run->add_flag("-q,--quiet", options.quiet, "print nothing but messages");
    run->add_flag("--recall", options.recall, "go on from the saved state, as Recall and Cont do");
    run->add_flag("--save", options.save, "save the state at the end, also after a signal");
    run->add_flag("--radiation", options.radiation, "import the view factors m_rad first");
    run->add_option("--plot-every", options.plotEvery, "plot every N steps instead of key UT")
        ->type_name("N")
        ->check(CLI::Range(1, 2147483647));
    run->add_option("--snapshots", options.frameEvery, "write a picture m_STEP.png every N steps")
        ->type_name("N")
        ->check(CLI::Range(1, 2147483647));
    run->add_option("--threads", options.threads, "threads of the computation; the results are the same for any number")
        ->type_name("N")
        ->check(CLI::Range(1, maxThreads));
    run->add_flag(
        "--compensated", options.compensated,
        "carry what single precision rounds away on to the next step; other results, closer to the equations");
    run->add_option("--movie", options.movie, "make a film of these pictures, such as m.mp4, with ffmpeg")
        ->type_name("FILE")
        ->needs("--snapshots");
    run->add_flag("--strict", options.strict, "refuse a drawing that \"norvane check\" warns about");
    run->add_flag("--force", options.force, "run a drawing that \"norvane check\" finds errors in");
    run->add_option("--set", options.changes,
                    "change the drawing in memory: DT=2E-5, \"GG 2=9.81\", C7=\"TT 400\"; may be repeated")
        ->type_name("CHANGE")
        ->check(notEmpty);
    run->add_option("--time", options.time, "seconds to run, instead of the steps of key NT")
        ->type_name("SECONDS")
        ->check(positiveTime);
    run->add_option("-o,--output", options.folder, "the folder of all outputs, made if missing")
        ->type_name("DIR")
        ->check(notEmpty);
    run->add_option("--name", options.name, "the name that all outputs begin with")->type_name("BASE")->check(notEmpty);
    run->add_option("--stop-file", options.stopFile, "a stop file of its own, instead of checkstop")
        ->type_name("FILE")
        ->check(notEmpty);
    run->add_option("--summary", options.summary, "write how the run ended as JSON")
        ->type_name("FILE")
        ->check(notEmpty);
    run->add_option("--region", options.regions,
                    "a name for a range of cells, such as radiator=B2:B18; may be repeated")
        ->type_name("NAME=RANGE");
    addCheckpointOptions(run, options.checkpoints);
    options.extras.push_back(addFrameOptions(run));
    options.extras.push_back(addProbeOptions(run));
    options.extras.push_back(addBalanceOptions(run));
    options.extras.push_back(addSteadyOptions(run)); // the last one: it looks at what the others have measured
    run->footer(runStatusHelp);
    return {run, [kept] { return runGeometry(*kept); }};
}

} // namespace norvane
