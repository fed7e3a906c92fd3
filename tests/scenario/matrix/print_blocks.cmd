run
zero a v=-1.5 r=10 c=14
print a
print a r=9 c=13 row#=3
print a -nohead r=10 c=9
printf a -f r=10 c=13 cols=1
quit
