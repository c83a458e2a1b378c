set terminal svg size 400,300 font "Times,11" dashed background "white"
set key box
set grid
set samples 25
plot [-3:3] sin(x) lw 2, cos(x) dt 2 lc rgb "dark-green", '-' with boxes fs transparent solid 0.25 lc rgb 0x123456 title "boxes"
-2 0.5
0 0.25
2 -0.5
e
