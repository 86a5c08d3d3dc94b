// quadrel-fit: fits lines, planes, circles, spheres, ellipses, paraboloids,
// ideal trihedrals and quality peaks to points read from files, with the
// quadrel library.
#include <unistd.h>

#include <cmath>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "demo.h"
#include "errors.h"
#include "quadrel/frontend/metrology_shapes.h"
#include "quadrel/frontend/robust_fit.h"
#include "quadrel/frontend/shape_fit.h"

namespace {

using quadrel_fit::OutputOptions;

// Every command, for messages: the shapes of the table, then the rest.
std::string Commands() {
  std::string names;
  for (const quadrel_frontend::ShapeEntry &shape : quadrel_frontend::Shapes())
    names += std::string(shape.name) + ", ";
  return names + "trihedral, peak, demo";
}

const char *const kFileHelp =
    "Point file: PLY, PCD (ascii, binary, binary_compressed), LAS 1.0-1.4, or text with one "
    "point per line as x y z, separated by blanks or commas (or semicolons with decimal "
    "commas); '#' lines, empty lines and one header line of words are skipped. The format is "
    "told from the content. Points whose x, y or z is NaN or infinite (no return) are skipped "
    "and counted. '-' or nothing reads standard input.";

// The options of a search through outliers besides --inlier-threshold.
const char *const kRobustFlags[] = {"--seed",        "--confidence", "--max-iterations",
                                    "--min-inliers", "--extract",    "--labels-out",
                                    "--min-radius",  "--max-radius"};

// --inlier-threshold and the options of the search on a shape command; a shape
// without a search takes --inlier-threshold only to refuse it with a message
// that names the shapes that have one, and its help leaves it out.
void AddRobustOptions(const quadrel_frontend::ShapeEntry &shape, CLI::App &command,
                      quadrel_fit::RobustOptions &robust) {
  ConsensusShape search = ConsensusShape::kLine;
  CLI::Option *threshold =
      command
          .add_option("--inlier-threshold", robust.threshold,
                      "Fit through outliers and clutter: find the shape by sample consensus, "
                      "the points within D of it (in the units of the points) its inliers, then "
                      "fit the inliers alone. Adds inlier_threshold, inliers, inlier_rms and "
                      "consensus_iterations; the residuals are those of the inliers.")
          ->type_name("D");
  if (!quadrel_frontend::FindConsensusShape(shape, search)) {
    threshold->group("");
    return;
  }
  command
      .add_option("--seed", robust.seed,
                  "Seed of the samples drawn (default 0): a seed gives the same result on every "
                  "platform and for any number of threads.")
      ->type_name("N");
  command
      .add_option("--confidence", robust.confidence,
                  "Draw samples until a better model would be missed with at most 1 - P "
                  "probability, P strictly between 0 and 1 (default 0.999).")
      ->type_name("P");
  command
      .add_option("--max-iterations", robust.maxIterations,
                  "Draw at most N samples for a model, whatever the confidence (default 100000).")
      ->type_name("N");
  command
      .add_option("--min-inliers", robust.minInliers,
                  "The fewest inliers a model must have (default: the points of one sample).")
      ->type_name("N");
  command
      .add_option("--extract", robust.extract,
                  "Find up to N models one after another, each among the points the ones "
                  "before left, until one has fewer than --min-inliers inliers: one row per "
                  "model as with --segment-by, exit status 3 when the inliers of a model could "
                  "not be fitted.")
      ->type_name("N");
  command
      .add_option("--labels-out", robust.labelsPath,
                  "Write every point to FILE as text, a line 'x y z label' under that header "
                  "(coordinates to 17 digits, whatever the input's format), label the model "
                  "that took the point (0 the first) or -1 for none.")
      ->type_name("FILE");
  if (search == ConsensusShape::kLine || search == ConsensusShape::kPlane) return;
  command
      .add_option("--min-radius", robust.minRadius,
                  "Pass over models with a radius below R (default 0).")
      ->type_name("R");
  command
      .add_option("--max-radius", robust.maxRadius,
                  "Pass over models with a radius above R (default none): keeps a search for a "
                  "ball or a hole from taking a huge " +
                      std::string(shape.name) + " along a floor or a wall.")
      ->type_name("R");
}

// Reading standard input from a terminal waits for typing; say so.
void NoteTerminalInput(const std::string &path) {
  if (path == "-" && isatty(STDIN_FILENO)) {
    std::cerr << "quadrel-fit: reading from standard input; end with Ctrl-D\n";
  }
}

// The first word of the command line that is no option must be a command.
bool UnknownCommand(int argc, char **argv, std::string &word) {
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (!argument.empty() && argument[0] == '-') continue;
    word = argument;
    const std::string known = ", " + Commands() + ",";
    return known.find(", " + argument + ",") == std::string::npos;
  }
  return false;
}

int Run(int argc, char **argv) {
  CLI::App app{
      "quadrel-fit: fit shapes to measured points with the quadrel library.\n"
      "Results go to standard output as text (6 significant digits) or, with --json, as one "
      "JSON object whose numbers read back exactly."};
  app.name("quadrel-fit");
  app.set_version_flag("--version", "quadrel-fit " QUADREL_FIT_VERSION);
  app.require_subcommand(1);
  app.footer(
      "Exit status: 0 success, 1 an output file could not be written, 2 bad usage, bad input "
      "or data that determine no shape (with a message on standard error and nothing on "
      "standard output), 3 with --segment-by or --extract: at least one segment or model could "
      "not be fitted (its row says why; the others are written).\nRun 'quadrel-fit COMMAND --help' "
      "for the options of "
      "a command.");

  OutputOptions output;
  quadrel_fit::RobustOptions robust;
  std::string path = "-";
  std::map<const quadrel_frontend::ShapeEntry *, CLI::App *> shapeCommands;
  std::string criterion = "algebraic";
  for (const quadrel_frontend::ShapeEntry &shape : quadrel_frontend::Shapes()) {
    const std::string_view name = shape.name;
    CLI::App *command = app.add_subcommand(shape.name, shape.description);
    command->add_option("FILE", path, kFileHelp);
    command->add_flag("--json", output.json, "Write the results as one JSON object.");
    command->add_flag("--residuals", output.residuals,
                      "List the residual of every point, with its line in the file.");
    command->add_flag("--csv", output.csv,
                      "Write the results as CSV: a header line, then one row (one per segment "
                      "with --segment-by), numbers that read back exactly.");
    command
        ->add_option("--segment-by", output.segmentBy,
                     "Fit every segment on its own: the points that share a value of this "
                     "column (a header word of a text file, a PLY property, a PCD field, or a "
                     "LAS field such as classification, point_source_id or user_data). One row "
                     "per segment in the order of its first point; --json writes JSON Lines. "
                     "Exit status 3 when a segment could not be fitted.")
        ->type_name("NAME");
    if (quadrel_frontend::WithCriterion(shape, quadrel_frontend::Criterion::kMinimumZone) ||
        name == "cylinder" || name == "cone") {
      command
          ->add_option("--criterion", criterion,
                       name == "cylinder" || name == "cone"
                           ? "gaussian (the default and only choice): least-squares "
                             "orthogonal distances."
                           : "algebraic (default): the library's direct fit; gaussian: "
                             "least-squares orthogonal distances, with rms, iterations and "
                             "uncertainties; minimum-zone: the narrowest zone that holds every "
                             "point (straightness as the diameter of a cylinder about the "
                             "line, flatness, roundness in the Gaussian plane, sphericity).")
          ->type_name("CRITERION");
    }
    if (name == "circle" || name == "ellipse" || name == "plane") {
      command
          ->add_option("--svg", output.svgPath,
                       name == "plane"
                           ? "Draw the residual of every point as a bar into an SVG file."
                           : "Draw the points in the fitted plane with the fitted curve into "
                             "an SVG file.")
          ->type_name("FILE");
    }
    AddRobustOptions(shape, *command, robust);
    shapeCommands[&shape] = command;
  }

  std::vector<std::string> faces;
  double edgeAngle = 90.0;
  CLI::App *trihedral = app.add_subcommand(
      "trihedral",
      "Fit an ideal trihedral (three planes through one apex whose edges make one known angle) "
      "to points of its three faces: apex, angles alpha, beta, gamma of its rotation, rms "
      "distance and whether the iteration converged. The faces go in the order that makes the "
      "normals, turned away from the origin, a right-handed triple.");
  trihedral->add_option("FILES", faces, "The three point files, one for each face.")
      ->expected(3)
      ->required();
  trihedral
      ->add_option("--edge-angle", edgeAngle,
                   "Angle between two edges at the apex, in degrees, strictly between 0 and "
                   "120 (90 for the corner of a cube).")
      ->type_name("DEGREES")
      ->capture_default_str();
  trihedral->add_flag("--json", output.json, "Write the results as one JSON object.");

  CLI::App *peak = app.add_subcommand(
      "peak",
      "Find where a quality sampled at scattered positions is highest, from a quadratic surface "
      "fitted to all samples, and say how the position was found.");
  peak->add_option("FILE", path,
                   "Sample file: one sample per line as x y quality; otherwise as for point "
                   "files. '-' or nothing reads standard input.");
  peak->add_flag("--json", output.json, "Write the results as one JSON object.");
  peak->add_option("--svg", output.svgPath,
                   "Draw the samples shaded by quality, with the peak marked, into an SVG file.")
      ->type_name("FILE");

  quadrel_fit::DemoOptions demoOptions;
  CLI::App *demo = app.add_subcommand(
      "demo",
      "Run every fit on built-in samples (exact shapes with a little noise from a fixed seed) "
      "and print the fitted parameters against the true ones.");
  demo->add_flag("--json", demoOptions.json, "Write the table as one JSON object.");
  demo->add_option("--noise", demoOptions.noise,
                   "Standard deviation of the noise added to every number.")
      ->capture_default_str();
  demo->add_option("--seed", demoOptions.seed, "Seed of the noise.")->capture_default_str();
  demo->add_option("--save", demoOptions.saveDirectory,
                   "Also write the samples as point files into this directory.")
      ->type_name("DIR");

  if (argc < 2) {
    throw quadrel_fit::InputError("no command given; choose one of " + Commands() +
                                  "\nRun 'quadrel-fit --help' for usage.");
  }
  std::string word;
  if (UnknownCommand(argc, argv, word)) {
    throw quadrel_fit::InputError("unknown shape or command '" + word + "'; choose one of " +
                                  Commands());
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError &error) {
    if (error.get_exit_code() == 0) return app.exit(error);  // --help, --version
    throw quadrel_fit::InputError(std::string(error.what()) +
                                  "\nRun 'quadrel-fit --help' for usage.");
  }

  // Everything goes to a buffer first, so that a failure leaves standard output
  // empty.
  std::ostringstream out;
  int status = quadrel_fit::kExitOk;
  for (const auto &[shape, command] : shapeCommands) {
    if (command->parsed()) {
      quadrel_frontend::Criterion chosen = quadrel_frontend::Criterion::kAlgebraic;
      if (!quadrel_frontend::ParseCriterion(criterion, chosen)) {
        throw quadrel_fit::InputError("unknown criterion '" + criterion +
                                      "'; choose one of algebraic, gaussian, minimum-zone");
      }
      const quadrel_frontend::ShapeEntry *entry = quadrel_frontend::WithCriterion(*shape, chosen);
      if (entry == nullptr) {
        throw quadrel_fit::InputError("a " + std::string(shape->name) + " has no " + criterion +
                                      " fit; it takes --criterion gaussian");
      }
      robust.on = command->count("--inlier-threshold") > 0;
      for (const char *flag : kRobustFlags)
        if (command->get_option_no_throw(flag) != nullptr && command->count(flag) > 0)
          robust.given.emplace_back(flag);
      NoteTerminalInput(path);
      status = quadrel_fit::RunShapeCommand(*entry, path, output, robust, out);
    }
  }
  if (trihedral->parsed()) {
    quadrel_fit::RunTrihedralCommand({faces[0], faces[1], faces[2]}, edgeAngle, output, out);
  }
  if (peak->parsed()) {
    NoteTerminalInput(path);
    quadrel_fit::RunPeakCommand(path, output, out);
  }
  if (demo->parsed()) {
    if (!(demoOptions.noise >= 0.0 && std::isfinite(demoOptions.noise))) {
      throw quadrel_fit::InputError("--noise must be a finite number of at least 0");
    }
    quadrel_fit::RunDemo(demoOptions, out);
  }
  std::cout << out.str();
  std::cout.flush();
  if (!std::cout) {
    std::cerr << "quadrel-fit: cannot write to standard output\n";
    return quadrel_fit::kExitFailure;
  }
  return status;
}

}  // namespace

int main(int argc, char **argv) {
  try {
    return Run(argc, argv);
  } catch (const quadrel_fit::ToolError &error) {
    std::cerr << "quadrel-fit: " << error.what() << '\n';
    return error.exitStatus();
  } catch (const std::bad_alloc &) {
    std::cerr << "quadrel-fit: out of memory\n";
    return quadrel_fit::kExitFailure;
  }
}
