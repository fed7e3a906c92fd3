lev
do a1 f=1 l=1
do a2 f=1 l=1
do a3 f=1 l=1
do a4 f=1 l=1
do a5 f=1 l=1
do a6 f=1 l=1
do a7 f=1 l=1
do a8 f=1 l=1
do a9 f=1 l=1
do a10 f=1 l=1
do a11 f=1 l=1
do a12 f=1 l=1
do a13 f=1 l=1
do a14 f=1 l=1
do a15 f=1 l=1
do a16 f=1 l=1
end_do
end_do
end_do
end_do
end_do
end_do
end_do
end_do
end_do
end_do
end_do
end_do
end_do
end_do
end_do
end_do

