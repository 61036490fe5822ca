# Shows the body mass of the penguins by species and island as a pivot table of the engine's.
#
#     kovadx run --data examples/penguins -- Rscript examples/penguins/summary.R
#
# The package lies in the engine's home folder, which is where library() looks for it first.
library(kovastatistics, lib.loc = c(file.path(Sys.getenv("KOVA_HOME"), "R", "rpackage"), .libPaths()))

penguins <- readCases(c("species", "island", "body_mass_g"))
groups <- unique(penguins[c("species", "island")])
groups <- groups[order(groups$species, groups$island, method = "radix"), ]
masses <- Map(function(species, island) penguins$body_mass_g[penguins$species == species & penguins$island == island],
              groups$species, groups$island)
weighed <- lapply(masses, function(mass) mass[!is.na(mass)])

cells <- cbind(Count = lengths(weighed), Mean = sapply(weighed, mean), "Std. deviation" = sapply(weighed, sd))
notes <- array("", dim(cells))
unknown <- lengths(masses) - lengths(weighed)
notes[, 1] <- ifelse(unknown > 0, paste(unknown, "not weighed"), "")

startProcedure("Summary", "Summary of the penguins")
pivotTable(cells, title = "Body mass (g) by species and island", outline = "Body mass", subtype = "Summary",
           rows = list(Species = variableValues("species", groups$species),
                       Island = variableValues("island", groups$island)),
           columns = list(Statistics = colnames(cells)), hideNames = "Statistics",
           formats = list("Count", cellFormat("Mean", "body_mass_g"), cellFormat("StdDev", "body_mass_g")),
           cellFootnotes = notes, titleFootnotes = "Penguins that were weighed",
           caption = sprintf("%d penguins, mean %.2f g", sum(cells[, "Count"]), mean(unlist(weighed))))
endProcedure()
