# quillon_left_out(<what> <reason>): what this build goes without, for all to read. Nothing is left
# out in silence.
function(quillon_left_out what reason)
  message(STATUS "Left out: ${what}: ${reason}")
endfunction()
